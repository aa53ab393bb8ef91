#include "platform/simulated/PlacedJson.h"

#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>

namespace quorvane {

namespace {

using Json = nlohmann::json;

constexpr std::size_t deepest = 32;

/// Where the first token from `offset` on begins in a text that the parser accepts.
std::size_t beginOfToken(std::string_view text, std::size_t offset) {
    constexpr std::string_view first = "{}[]\"-0123456789tfn";
    while (offset < text.size() && first.find(text[offset]) == std::string_view::npos) {
        if (text[offset] != '/')
            ++offset;
        else if (text.substr(offset).starts_with("/*"))
            offset = std::min(text.find("*/", offset + 2), text.size() - 2) + 2;
        else
            offset = std::min(text.find('\n', offset), text.size());
    }
    return offset;
}

/// Where the token that begins at `offset` ends.
std::size_t endOfToken(std::string_view text, std::size_t offset) {
    if (offset >= text.size())
        return text.size();
    if (text[offset] != '"') {
        const bool isBracket =
            std::string_view("{}[]").find(text[offset]) != std::string_view::npos;
        return isBracket ? offset + 1
                         : std::min(text.find_first_of(",:]} \t\r\n/", offset), text.size());
    }
    for (++offset; offset < text.size() && text[offset] != '"'; ++offset)
        offset += text[offset] == '\\' ? 1 : 0;
    return std::min(offset + 1, text.size());
}

/// The parser's own words, without its name and its place.
std::string reason(std::string_view what) {
    const auto without = [&what](std::string_view beginning, std::string_view end) {
        if (what.starts_with(beginning))
            what.remove_prefix(std::min(what.find(end), what.size() - end.size()) + end.size());
    };
    without("[", "] ");
    without("parse error at ", ": ");
    return std::string(what);
}

/// Takes the parser's tokens and finds each of them in the text. Returns true, for the parser to
/// continue, from everything: mistakes are thrown. The names are the parser's.
// NOLINTBEGIN(readability-identifier-naming)
class Builder {
public:
    explicit Builder(std::string_view text) : m_text(text) {}

    [[nodiscard]] JsonValue result() { return std::move(m_root); }

    bool null() { return take(nullptr); }

    bool boolean(bool value) { return take(value); }

    bool number_integer(std::int64_t value) { return takeNumber(static_cast<double>(value), true); }

    bool number_unsigned(std::uint64_t value) {
        return takeNumber(static_cast<double>(value), true);
    }

    bool number_float(double value, const std::string& /*text*/) {
        return takeNumber(value, false);
    }

    bool string(std::string& value) { return take(std::move(value)); }

    // Texts have none.
    static bool binary(Json::binary_t& /*value*/) { return true; }

    bool start_object(std::size_t /*count*/) {
        open(JsonValue::Object());
        m_keys.emplace_back();
        return true;
    }

    bool key(std::string& name) {
        const std::size_t offset = nextToken();
        if (!m_keys.back().insert(name).second)
            throw Mistake(offset, "the key \"" + name + "\" is there twice");
        std::get<JsonValue::Object>(m_open.back()->value)
            .push_back({.offset = offset, .key = std::move(name), .value = {}});
        return true;
    }

    bool end_object() {
        m_keys.pop_back();
        return close();
    }

    bool start_array(std::size_t /*count*/) {
        open(JsonValue::List());
        return true;
    }

    bool end_array() { return close(); }

    [[noreturn]] static bool parse_error(std::size_t charactersRead, const std::string& /*token*/,
                                         const Json::exception& error) {
        throw Mistake(std::max<std::size_t>(charactersRead, 1) - 1, reason(error.what()));
    }

private:
    std::size_t nextToken() {
        const std::size_t begin = beginOfToken(m_text, m_read);
        m_read = endOfToken(m_text, begin);
        return begin;
    }

    /// The place for the next value.
    JsonValue& place() {
        if (m_open.empty())
            return m_root;
        if (auto* list = std::get_if<JsonValue::List>(&m_open.back()->value))
            return list->emplace_back();
        return std::get<JsonValue::Object>(m_open.back()->value).back().value;
    }

    template <class Kind>
    bool take(Kind value) {
        place() = {.offset = nextToken(), .value = std::move(value)};
        return true;
    }

    bool takeNumber(double value, bool isWhole) {
        return take(JsonValue::Number{.value = value, .isWhole = isWhole});
    }

    template <class Kind>
    void open(Kind empty) {
        JsonValue& value = place();
        value = {.offset = nextToken(), .value = std::move(empty)};
        if (m_open.size() == deepest)
            throw Mistake(value.offset, "there are lists or objects nested too deeply");
        m_open.push_back(&value);
    }

    bool close() {
        nextToken();
        m_open.pop_back();
        return true;
    }

    std::string_view m_text;
    std::size_t m_read = 0;
    JsonValue m_root;
    // The lists and objects that are not complete, the innermost last. Nothing is added to one
    // before those in it are complete, so they do not move.
    std::vector<JsonValue*> m_open;
    // Those of the open objects.
    std::vector<std::set<std::string>> m_keys;
};

// NOLINTEND(readability-identifier-naming)

} // namespace

JsonValue parseJson(std::string_view text) {
    // The parser would take it for the end.
    if (const std::size_t offset = text.find('\0'); offset != std::string_view::npos)
        throw Mistake(offset, "there is a NUL byte");
    Builder builder(text);
    Json::sax_parse(text, &builder, Json::input_format_t::json, /*strict=*/true,
                    /*ignore_comments=*/true);
    return builder.result();
}

} // namespace quorvane
