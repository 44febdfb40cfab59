#include "line_parser.h"

#include "byte_data.h"
#include "script_error.h"

#include <cctype>
#include <charconv>
#include <cstdlib>

namespace kryn::script {

namespace {

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool isDelimiter(char c) {
    return isSpace(c) || c == '[' || c == ']' || c == '{' || c == '}';
}

bool parseDigits(std::string_view digits, int base, uint64_t& out) {
    if (digits.empty()) {
        return false;
    }
    auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), out, base);
    if (error == std::errc::result_out_of_range) {
        throw ScriptError("integer '" + std::string(digits) + "' is out of range");
    }
    return error == std::errc() && end == digits.data() + digits.size();
}

Value parseNumber(std::string_view token) {
    Value v;
    v.text = std::string(token);
    std::string_view body = token;
    if (!body.empty() && (body[0] == '-' || body[0] == '+')) {
        v.negative = body[0] == '-';
        body.remove_prefix(1);
    }
    if (body.size() > 2 && body[0] == '0' && (body[1] == 'x' || body[1] == 'X')) {
        if (!parseDigits(body.substr(2), 16, v.magnitude)) {
            throw ScriptError("bad hexadecimal value '" + v.text + "'");
        }
        v.kind = Value::Kind::Integer;
        v.hex = true;
    } else if (parseDigits(body, 10, v.magnitude)) {
        v.kind = Value::Kind::Integer;
    } else {
        // A float: digits with a point and/or an exponent, nothing else.
        std::string copy(token);
        char* end = nullptr;
        v.real = std::strtod(copy.c_str(), &end);
        bool digitSeen = false;
        for (char c : body) {
            digitSeen = digitSeen || std::isdigit(static_cast<unsigned char>(c)) != 0;
        }
        if (!digitSeen || end != copy.c_str() + copy.size() || body.starts_with("inf") ||
            body.starts_with("nan") || body.starts_with("INF") || body.starts_with("NAN")) {
            throw ScriptError("'" + v.text + "' is not a value");
        }
        v.kind = Value::Kind::Float;
        return v;
    }
    double m = static_cast<double>(v.magnitude);
    v.real = v.negative ? -m : m;
    return v;
}

class LineReader {
  public:
    LineReader(std::string_view text, const ByteDataSource& source)
        : text_(text), source_(source) {}

    bool atEnd() {
        skipSpace();
        return pos_ >= text_.size();
    }

    std::string_view word() {
        skipSpace();
        size_t start = pos_;
        while (pos_ < text_.size() && !isDelimiter(text_[pos_])) {
            ++pos_;
        }
        return text_.substr(start, pos_ - start);
    }

    Value value(bool inArray) {
        skipSpace();
        char c = text_[pos_];
        if (c == '[') {
            if (inArray) {
                throw ScriptError("arrays do not nest");
            }
            return group(']', Value::Kind::Array);
        }
        if (c == '{') {
            if (inArray) {
                throw ScriptError("a structure cannot be an array element");
            }
            return group('}', Value::Kind::Struct);
        }
        if (c == ']' || c == '}') {
            throw ScriptError(std::string("unexpected '") + c + "'");
        }
        std::string_view token = word();
        if (isByteData(token)) {
            if (inArray) {
                throw ScriptError("byte data cannot be an array element");
            }
            Value v;
            v.kind = Value::Kind::Bytes;
            v.text = std::string(token.substr(0, token.find(':') + 1)) + "...";
            v.bytes = decodeByteData(token, source_);
            return v;
        }
        return parseScalar(token);
    }

  private:
    void skipSpace() {
        while (pos_ < text_.size() && isSpace(text_[pos_])) {
            ++pos_;
        }
    }

    Value group(char close, Value::Kind kind) {
        Value v;
        v.kind = kind;
        v.text = kind == Value::Kind::Array ? "[...]" : "{...}";
        ++pos_;
        for (;;) {
            skipSpace();
            if (pos_ >= text_.size()) {
                throw ScriptError(std::string("missing '") + close + "'");
            }
            if (text_[pos_] == close) {
                ++pos_;
                return v;
            }
            v.items.push_back(value(kind == Value::Kind::Array));
        }
    }

    std::string_view text_;
    const ByteDataSource& source_;
    size_t pos_ = 0;
};

bool isName(std::string_view name) {
    if (name.empty() || std::isalpha(static_cast<unsigned char>(name[0])) == 0) {
        return false;
    }
    for (char c : name) {
        if (std::isalnum(static_cast<unsigned char>(c)) == 0) {
            return false;
        }
    }
    return true;
}

} // namespace

Value parseScalar(std::string_view token) {
    if (token == "null") {
        Value v;
        v.kind = Value::Kind::Null;
        v.text = "null";
        return v;
    }
    return parseNumber(token);
}

std::optional<ScriptLine> parseLine(std::string_view text, int number,
                                    const ByteDataSource& source) {
    size_t hash = text.find('#');
    if (hash != std::string_view::npos) {
        text = text.substr(0, hash);
    }
    LineReader reader(text, source);
    if (reader.atEnd()) {
        return std::nullopt;
    }
    ScriptLine line;
    line.number = number;
    line.name = std::string(reader.word());
    if (!isName(line.name)) {
        throw ScriptError("a line must start with an operation name");
    }
    while (!reader.atEnd()) {
        line.args.push_back(reader.value(false));
    }
    return line;
}

} // namespace kryn::script
