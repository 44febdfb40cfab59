// Values as a job-script line writes them, before they meet a C prototype.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kryn::script {

struct Value {
    enum class Kind { Integer, Float, Null, Array, Bytes, Struct };

    Kind kind = Kind::Null;
    // Integer: sign and magnitude as written, so each parameter can check its
    // own range; hex remembers the form (hex fits signed types by bit width).
    uint64_t magnitude = 0;
    bool negative = false;
    bool hex = false;
    double real = 0.0;          // Float (and Integer, converted)
    std::vector<Value> items;   // Array elements or Struct fields
    std::vector<uint8_t> bytes; // Bytes
    std::string text;           // the token as written, for messages
};

// One line of a script: the operation's name and its written arguments.
struct ScriptLine {
    int number = 0;
    std::string name;
    std::vector<Value> args;
};

} // namespace kryn::script
