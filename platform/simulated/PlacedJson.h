#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quorvane {

/// What is wrong at an offset of a text.
class Mistake : public std::runtime_error {
public:
    Mistake(std::size_t offset, const std::string& what)
        : std::runtime_error(what), m_offset(offset) {}

    [[nodiscard]] std::size_t offset() const { return m_offset; }

private:
    std::size_t m_offset;
};

/// A value of a JSON text that knows at which offset of the text it begins.
struct JsonValue {
    struct Member;
    using List = std::vector<JsonValue>;
    /// In the order of the text; no two have the same key.
    using Object = std::vector<Member>;

    struct Number {
        double value;
        /// Written without a fraction and an exponent.
        bool isWhole;
    };

    /// Thrown for a value of another kind than was asked for.
    struct WrongKind {
        std::size_t offset;
    };

    /// Throws WrongKind.
    template <class Kind>
    [[nodiscard]] const Kind& as() const {
        if (const auto* wanted = std::get_if<Kind>(&value))
            return *wanted;
        throw WrongKind{offset};
    }

    std::size_t offset = 0;
    std::variant<std::nullptr_t, bool, Number, std::string, List, Object> value;
};

struct JsonValue::Member {
    /// Where the key begins.
    std::size_t offset = 0;
    std::string key;
    JsonValue value;
};

/// Parses a JSON text, with comments. Throws Mistake for bad syntax, a number that is too large, a
/// key that an object has twice, and for lists and objects nested more than 32 deep.
[[nodiscard]] JsonValue parseJson(std::string_view text);

} // namespace quorvane
