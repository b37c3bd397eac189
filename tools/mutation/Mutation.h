#pragma once

#include <sys/ipc.h>
#include <sys/shm.h>
#include <sys/statvfs.h>

#include <cstdlib>
#include <utility>

/// What a woven source says in its places that can be changed (weaving.py). Which one of them is changed is
/// the number in the environment variable ORVANE_MUTANT; none is, where it is 0. It belongs to the copies
/// that tools/mutate makes, and to nothing that ships.
namespace mutation {

/// One for all programs of an IPC namespace: whoever else they become, whatever is mounted, and with no
/// environment and no descriptor left, they still are the same mutant.
struct Memory {
    int number;
    unsigned char reached[200'000];
};

/// Only where the machine's own files cannot be written to, a mutant comes to life.
inline bool isApart() {
    struct statvfs root {};
    return ::statvfs("/", &root) == 0 && (root.f_flag & ST_RDONLY) != 0;
}

inline Memory& attached() {
    static Memory own{};
    const char* number = std::getenv("ORVANE_MUTANT");
    const bool isFirst = number != nullptr && isApart();
    const int segment = ::shmget(0x04756174, sizeof(Memory), isFirst ? IPC_CREAT | 0666 : 0);
    void* const shared = segment < 0 ? nullptr : ::shmat(segment, nullptr, 0);
    if (shared == nullptr || shared == reinterpret_cast<void*>(-1)) return own;
    auto& memory = *static_cast<Memory*>(shared);
    if (isFirst) memory.number = std::atoi(number);
    return memory;
}

inline Memory& memory() {
    static Memory& ours = attached();
    return ours;
}

/// Whether this place is the one that is changed.
inline bool is(int number) {
    auto& ours = memory();
    __atomic_store_n(&ours.reached[number], 1, __ATOMIC_RELAXED);
    return __atomic_load_n(&ours.number, __ATOMIC_RELAXED) == number;
}

/// Stands between the operands of a sign that is written twice: `a < Sign{17} < b`. So its place among the
/// other signs stays what it was.
struct Sign {
    int number;
};

template <typename T>
struct Left {
    T& value;
    int number;
};

#define MUTATION_SIGN(is_written, is_meant)                                      \
    template <typename T>                                                        \
    Left<std::remove_reference_t<T>> operator is_written(T&& value, Sign sign) { \
        return {value, sign.number};                                             \
    }                                                                            \
    template <typename T, typename U>                                            \
    auto operator is_written(Left<T> left, U&& right)                            \
        ->std::decay_t<decltype(left.value is_written std::forward<U>(right))> { \
        if (is(left.number)) return left.value is_meant std::forward<U>(right);  \
        return left.value is_written std::forward<U>(right);                     \
    }
MUTATION_SIGN(<, <=)
MUTATION_SIGN(<=, <)
MUTATION_SIGN(>, >=)
MUTATION_SIGN(>=, >)
MUTATION_SIGN(==, !=)
MUTATION_SIGN(!=, ==)
MUTATION_SIGN(+, -)
MUTATION_SIGN(-, +)
#undef MUTATION_SIGN

/// In the place of a negation: `Negation{17} ->* x`.
struct Negation {
    int number;
};

template <typename T>
bool operator->*(Negation negation, T&& value) {
    return is(negation.number) ? static_cast<bool>(std::forward<T>(value)) : !std::forward<T>(value);
}

}  // namespace mutation
