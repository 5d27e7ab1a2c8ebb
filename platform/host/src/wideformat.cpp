// SPDX-License-Identifier: MIT
#include "wideformat.h"

#include "system/codepage.h"

#include <algorithm>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <locale.h>

namespace lm::host {

namespace {

constexpr int kWidest = 65535;

enum class Length { kNone, kChar, kShort, kLong, kLongLong, kMax, kSize, kDifference, kLongDouble };

/// One conversion of a format.
struct Conversion {
    std::string flags; // as they stand, for the number conversions
    bool left = false;
    int width = 0;
    int precision = -1;
    Length length = Length::kNone;
    char kind = 0; // 0: cut off or unknown
};

// A va_list can't be handed on by reference as it is where it is an array type.
struct Arguments {
    va_list list;
    int nextInt() { return va_arg(list, int); }
};

/// Numbers are formatted with the decimal point of the C locale, whatever the process has set.
class PlainNumbers {
public:
    PlainNumbers() : m_before(uselocale(plain())) {}
    ~PlainNumbers() { uselocale(m_before); }
    PlainNumbers(const PlainNumbers&) = delete;
    PlainNumbers& operator=(const PlainNumbers&) = delete;

private:
    static locale_t plain() {
        static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
        return locale;
    }
    locale_t m_before;
};

/// Reads conversions out of a format and writes what they say.
class Formatter {
public:
    Formatter(const WideChar* format, va_list arguments) : m_at(format) {
        va_copy(m_arguments.list, arguments);
    }
    ~Formatter() { va_end(m_arguments.list); }

    WideString run() {
        while (*m_at != 0) {
            if (*m_at != '%') {
                m_out.push_back(*m_at++);
                continue;
            }
            const WideChar* const start = m_at++;
            if (*m_at == '%') {
                m_out.push_back(*m_at++);
                continue;
            }
            if (!write(parse())) m_out.append(start, m_at);
        }
        return m_out;
    }

private:
    char here() const { return *m_at < 128 ? static_cast<char>(*m_at) : '?'; }
    bool take(char c) {
        if (*m_at != static_cast<WideChar>(c)) return false;
        ++m_at;
        return true;
    }

    Conversion parse() {
        Conversion c;
        for (; *m_at != 0 && std::string_view("-+ #0").find(here()) != std::string_view::npos; ++m_at) {
            c.flags.push_back(here());
            c.left = c.left || *m_at == '-';
        }
        if (take('*')) {
            c.width = m_arguments.nextInt();
            if (c.width < 0) {
                c.left = true;
                c.flags.push_back('-');
                c.width = c.width == INT32_MIN ? kWidest : -c.width;
            }
        } else {
            c.width = digits();
        }
        if (take('.')) c.precision = take('*') ? m_arguments.nextInt() : digits();
        c.width = std::min(c.width, kWidest);
        c.precision = std::min(c.precision, kWidest);
        c.length = length();
        constexpr std::string_view kKinds = "diouxXeEfFgGaAcCsSp";
        if (*m_at != 0 && kKinds.find(here()) != std::string_view::npos) c.kind = here();
        if (*m_at != 0) ++m_at;
        return c;
    }

    int digits() {
        int value = 0;
        for (; *m_at >= '0' && *m_at <= '9'; ++m_at) value = std::min(value * 10 + (*m_at - '0'), kWidest);
        return value;
    }

    Length length() {
        if (take('h')) return take('h') ? Length::kChar : Length::kShort;
        if (take('l')) return take('l') ? Length::kLongLong : Length::kLong;
        if (take('j')) return Length::kMax;
        if (take('z')) return Length::kSize;
        if (take('t')) return Length::kDifference;
        if (take('L')) return Length::kLongDouble;
        return Length::kNone;
    }

    bool write(const Conversion& c) {
        switch (c.kind) {
        case 'd':
        case 'i':
            number(c, signedArgument(c.length));
            return true;
        case 'o':
        case 'u':
        case 'x':
        case 'X':
            number(c, unsignedArgument(c.length));
            return true;
        case 'c':
        case 'C':
            unit(c);
            return true;
        case 's':
        case 'S':
            text(c);
            return true;
        case 'p':
            pointer(c);
            return true;
        case 0:
            return false;
        default:
            real(c);
            return true;
        }
    }

    long long signedArgument(Length length) {
        switch (length) {
        case Length::kChar:
            return static_cast<signed char>(m_arguments.nextInt());
        case Length::kShort:
            return static_cast<short>(m_arguments.nextInt());
        case Length::kLong:
            return va_arg(m_arguments.list, long);
        case Length::kLongLong:
            return va_arg(m_arguments.list, long long);
        case Length::kMax:
            return va_arg(m_arguments.list, std::intmax_t);
        case Length::kSize:
        case Length::kDifference:
            return va_arg(m_arguments.list, std::ptrdiff_t);
        default:
            return m_arguments.nextInt();
        }
    }

    unsigned long long unsignedArgument(Length length) {
        switch (length) {
        case Length::kChar:
            return static_cast<unsigned char>(m_arguments.nextInt());
        case Length::kShort:
            return static_cast<unsigned short>(m_arguments.nextInt());
        case Length::kLong:
            return va_arg(m_arguments.list, unsigned long);
        case Length::kLongLong:
            return va_arg(m_arguments.list, unsigned long long);
        case Length::kMax:
            return va_arg(m_arguments.list, std::uintmax_t);
        case Length::kSize:
        case Length::kDifference:
            return va_arg(m_arguments.list, std::size_t);
        default:
            return static_cast<unsigned int>(m_arguments.nextInt());
        }
    }

    template<class Value>
    void number(const Conversion& c, Value value, const char* modifier = "ll") {
        const PlainNumbers plain;
        const std::string narrow = "%" + c.flags + "*.*" + modifier + c.kind;
        char some[128];
        const int size = std::snprintf(some, sizeof some, narrow.c_str(), c.width, c.precision, value);
        if (size < 0) return;
        if (static_cast<std::size_t>(size) < sizeof some) {
            m_out.append(some, some + size);
            return;
        }
        std::string all(static_cast<std::size_t>(size) + 1, '\0');
        std::snprintf(all.data(), all.size(), narrow.c_str(), c.width, c.precision, value);
        m_out.append(all.begin(), all.end() - 1);
    }

    void real(const Conversion& c) {
        if (c.length == Length::kLongDouble)
            number(c, va_arg(m_arguments.list, long double), "L");
        else
            number(c, va_arg(m_arguments.list, double), "");
    }

    void pointer(Conversion c) {
        c.kind = 'x';
        c.flags.push_back('#');
        number(c, static_cast<unsigned long long>(
                      reinterpret_cast<std::uintptr_t>(va_arg(m_arguments.list, void*))));
    }

    // A capital letter turns the width round, unless a modifier says which one is meant.
    static bool isNarrow(const Conversion& c) {
        if (c.length == Length::kShort) return true;
        return (c.kind == 'S' || c.kind == 'C') && c.length != Length::kLong;
    }

    void unit(const Conversion& c) {
        const int value = m_arguments.nextInt();
        const WideChar one = isNarrow(c) ? lm::system::widenByte(static_cast<unsigned char>(value))
                                         : static_cast<WideChar>(value);
        padded(c, WideView(&one, 1));
    }

    void text(const Conversion& c) {
        const std::size_t limit = c.precision >= 0 ? static_cast<std::size_t>(c.precision) : SIZE_MAX;
        if (isNarrow(c)) {
            const char* bytes = va_arg(m_arguments.list, const char*);
            std::size_t size = 0;
            if (bytes == nullptr) bytes = "(null)";
            while (size < limit && bytes[size] != 0) ++size;
            padded(c, lm::system::widenNarrow(std::string_view(bytes, size)));
            return;
        }
        static constexpr WideChar kNull[] = {'(', 'n', 'u', 'l', 'l', ')', 0};
        const WideChar* units = va_arg(m_arguments.list, const WideChar*);
        std::size_t size = 0;
        if (units == nullptr) units = kNull;
        while (size < limit && units[size] != 0) ++size;
        padded(c, WideView(units, size));
    }

    void padded(const Conversion& c, WideView text) {
        const std::size_t width = static_cast<std::size_t>(c.width);
        const std::size_t fill = width > text.size() ? width - text.size() : 0;
        if (!c.left) m_out.append(fill, ' ');
        m_out.append(text);
        if (c.left) m_out.append(fill, ' ');
    }

    const WideChar* m_at;
    Arguments m_arguments;
    WideString m_out;
};

} // namespace

WideString formatWide(const WideChar* format, va_list arguments) {
    if (format == nullptr) return {};
    return Formatter(format, arguments).run();
}

} // namespace lm::host
