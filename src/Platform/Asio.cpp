// The one translation unit that holds Asio's implementation.
#include <asio/impl/src.hpp>
