#pragma once

#include <QtCore/QString>
#include <cstdint>
#include <string>
#include <string_view>

namespace orvane {

/// Text to be shown: bytes of any origin, repaired where they are no UTF-8.
QString displayText(std::string_view bytes);

/// The bytes of an identity as an opaque key for QML, one character per byte; `bytesOfKey` gives them back.
QString keyOfBytes(std::string_view bytes);
std::string bytesOfKey(const QString& key);

/// A count of bytes as it is shown; an em dash for less than one.
QString sizeText(std::int64_t byteCount);

}  // namespace orvane
