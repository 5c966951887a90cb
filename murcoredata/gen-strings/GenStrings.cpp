// GenStrings: build-time generator for the string table.
//
//   GenStrings <input.tsv> <output-dir>
//
// Reads murcoredata-strings.tsv and writes two files into <output-dir>:
//   StringIds.h      enum CoreData::StringId, one enumerator per row
//   StringTable.cpp  LookupStringValue_Internal and LookupStringKey_Internal
//
// Input format (UTF-8, one row per line, LF or CRLF line ends):
//   id <TAB> key <TAB> text
// - Lines that are empty or start with '#' are ignored.
// - id is "0x" followed by exactly 8 upper-case hex digits, or "auto".
//   0x00000000 is refused: it is never a valid string id.
// - key starts with "IDS_" or "IDP_" and is otherwise made of ASCII letters,
//   digits and '_' (it becomes a C++ enumerator name).
// - text is everything after the second tab up to the end of the line, taken
//   byte for byte: nothing is trimmed, so a leading or trailing space is part
//   of the text. It must be non-empty, valid UTF-8 and free of NUL bytes; a
//   raw tab would start a fourth column. A backslash starts an escape:
//   \\ backslash, \t tab, \n newline, \s space (for a trailing space that an
//   editor might strip); any other escape is an error.
// Ids must be unique, and so must keys. Any error is reported as
// "<file>:<line>: error: ..." and the program exits with status 1 without
// writing anything.
//
// Ids of "auto" rows. First all explicit ids in the file are collected. Then
// the auto rows are taken in file order, and each gets
//     h = FNV-1a 32-bit hash of the key's bytes
//         (offset basis 0x811C9DC5, prime 0x01000193)
// and while h is 0, or equal to an explicit id, or equal to an id already
// assigned to an earlier auto row, h = h + 1 (mod 2^32).
// So an assigned id can never collide with a given one. It stays the same as
// long as the key stays the same and no new explicit id or earlier auto row
// takes its value. Translations are found by key and English text, not by
// id, so a shift does not break them; it shows up in the generated header.
//
// Look-up code. Both functions are balanced binary trees of comparisons over
// the ids taken as signed 32-bit numbers: about eight comparisons a call, no
// table in memory and nothing to initialise, so they are safe to call from
// static constructors. An unknown id gives "".
//
// The output is deterministic (no timestamps, no paths), so the same input
// always gives byte-identical files.

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Row
{
    int line = 0;
    bool autoId = false;
    uint32_t id = 0;
    std::string key;
    std::string text; // unescaped, raw UTF-8 bytes
};

std::string g_inputName;

[[noreturn]] void Fail(int line, const std::string& message)
{
    if (line > 0)
        std::cerr << g_inputName << ":" << line << ": error: " << message << "\n";
    else
        std::cerr << g_inputName << ": error: " << message << "\n";
    std::exit(1);
}

std::string Hex8(uint32_t v)
{
    char buf[16];
    std::snprintf(buf, sizeof buf, "0x%08X", static_cast<unsigned>(v));
    return buf;
}

uint32_t Fnv1a32(const std::string& s)
{
    uint32_t h = 0x811C9DC5u;
    for (const char c : s) {
        h ^= static_cast<unsigned char>(c);
        h *= 0x01000193u;
    }
    return h;
}

std::vector<std::string> SplitTabs(const std::string& line)
{
    std::vector<std::string> cols;
    std::string::size_type start = 0;
    for (;;) {
        const auto tab = line.find('\t', start);
        if (tab == std::string::npos) {
            cols.push_back(line.substr(start));
            return cols;
        }
        cols.push_back(line.substr(start, tab - start));
        start = tab + 1;
    }
}

bool ParseId(const std::string& s, uint32_t& out)
{
    if (s.size() != 10 || s[0] != '0' || s[1] != 'x')
        return false;
    uint32_t v = 0;
    for (std::size_t i = 2; i < s.size(); ++i) {
        const char c = s[i];
        uint32_t d;
        if (c >= '0' && c <= '9')
            d = static_cast<uint32_t>(c - '0');
        else if (c >= 'A' && c <= 'F')
            d = static_cast<uint32_t>(c - 'A' + 10);
        else
            return false;
        v = (v << 4) | d;
    }
    out = v;
    return true;
}

void CheckKey(int line, const std::string& key)
{
    if (key.empty())
        Fail(line, "empty key");
    if (key.compare(0, 4, "IDS_") != 0 && key.compare(0, 4, "IDP_") != 0)
        Fail(line, "key '" + key + "' does not start with IDS_ or IDP_");
    if (key.size() == 4)
        Fail(line, "key '" + key + "' has nothing after its prefix");
    for (char c : key) {
        const bool ok = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
        if (!ok)
            Fail(line, "key '" + key + "' contains a character that is not a letter, digit or '_'");
    }
}

// Checks well-formed UTF-8: no stray continuation bytes, no overlong forms,
// no surrogates, nothing above U+10FFFF.
bool IsValidUtf8(const std::string& s)
{
    std::size_t i = 0;
    const std::size_t n = s.size();
    while (i < n) {
        const unsigned char c = static_cast<unsigned char>(s[i]);
        if (c < 0x80) {
            ++i;
            continue;
        }
        int len;
        uint32_t cp;
        if (c >= 0xC2 && c <= 0xDF) {
            len = 2;
            cp = c & 0x1Fu;
        } else if (c >= 0xE0 && c <= 0xEF) {
            len = 3;
            cp = c & 0x0Fu;
        } else if (c >= 0xF0 && c <= 0xF4) {
            len = 4;
            cp = c & 0x07u;
        } else {
            return false;
        }
        if (i + static_cast<std::size_t>(len) > n)
            return false;
        for (int k = 1; k < len; ++k) {
            const unsigned char cc = static_cast<unsigned char>(s[i + static_cast<std::size_t>(k)]);
            if ((cc & 0xC0) != 0x80)
                return false;
            cp = (cp << 6) | (cc & 0x3Fu);
        }
        if ((len == 3 && cp < 0x800) || (len == 4 && (cp < 0x10000 || cp > 0x10FFFF)))
            return false;
        if (cp >= 0xD800 && cp <= 0xDFFF)
            return false;
        i += static_cast<std::size_t>(len);
    }
    return true;
}

std::string UnescapeText(int line, const std::string& raw)
{
    std::string out;
    out.reserve(raw.size());
    for (std::size_t i = 0; i < raw.size(); ++i) {
        const char c = raw[i];
        if (c == '\0')
            Fail(line, "text contains a NUL byte");
        if (c != '\\') {
            out.push_back(c);
            continue;
        }
        if (i + 1 >= raw.size())
            Fail(line, "text ends with a lone backslash (write \\\\ for a backslash)");
        const char e = raw[++i];
        switch (e) {
        case '\\': out.push_back('\\'); break;
        case 't': out.push_back('\t'); break;
        case 'n': out.push_back('\n'); break;
        case 's': out.push_back(' '); break;
        default:
            Fail(line, std::string("unknown escape '\\") + e + "' in text (known: \\\\ \\t \\n \\s)");
        }
    }
    if (out.empty())
        Fail(line, "empty text");
    if (!IsValidUtf8(out))
        Fail(line, "text is not valid UTF-8");
    return out;
}

std::vector<Row> ReadRows(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        Fail(0, "cannot open the file");
    std::ostringstream ss;
    ss << in.rdbuf();
    if (in.bad())
        Fail(0, "cannot read the file");
    std::string content = ss.str();
    if (content.compare(0, 3, "\xEF\xBB\xBF") == 0)
        content.erase(0, 3); // a UTF-8 byte order mark is tolerated

    std::vector<Row> rows;
    std::map<std::string, int> keyLine;

    int lineNo = 0;
    std::string::size_type pos = 0;
    while (pos < content.size()) {
        auto nl = content.find('\n', pos);
        if (nl == std::string::npos)
            nl = content.size();
        std::string line = content.substr(pos, nl - pos);
        pos = nl + 1;
        ++lineNo;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.empty() || line[0] == '#')
            continue;

        const auto cols = SplitTabs(line);
        if (cols.size() != 3)
            Fail(lineNo, "expected 3 tab-separated columns (id, key, text), found " + std::to_string(cols.size()));

        Row row;
        row.line = lineNo;
        if (cols[0] == "auto") {
            row.autoId = true;
        } else if (!ParseId(cols[0], row.id)) {
            Fail(lineNo, "bad id '" + cols[0] + "': expected 0x and 8 upper-case hex digits, or auto");
        } else if (row.id == 0) {
            Fail(lineNo, "id 0x00000000 is not allowed");
        }
        CheckKey(lineNo, cols[1]);
        row.key = cols[1];
        row.text = UnescapeText(lineNo, cols[2]);

        const auto k = keyLine.find(row.key);
        if (k != keyLine.end())
            Fail(lineNo, "duplicate key " + row.key + " (first on line " + std::to_string(k->second) + ")");
        keyLine.emplace(row.key, lineNo);
        rows.push_back(std::move(row));
    }
    if (rows.empty())
        Fail(0, "no rows");
    return rows;
}

void CheckAndAssignIds(std::vector<Row>& rows)
{
    std::map<uint32_t, int> used; // id -> line that holds it
    for (const Row& r : rows) {
        if (r.autoId)
            continue;
        const auto it = used.find(r.id);
        if (it != used.end())
            Fail(r.line, "duplicate id " + Hex8(r.id) + " (first on line " + std::to_string(it->second) + ")");
        used.emplace(r.id, r.line);
    }
    for (Row& r : rows) {
        if (!r.autoId)
            continue;
        uint32_t h = Fnv1a32(r.key);
        while (h == 0 || used.count(h) != 0)
            ++h;
        r.id = h;
        used.emplace(h, r.line);
    }
}

// A C string literal holding exactly the bytes of s. Printable ASCII stays
// readable; everything else becomes \xNN, and the literal is split after a
// hex escape when the next character is a hex digit, so that the escape
// cannot swallow it.
std::string CLiteral(const std::string& s)
{
    static const char* const hex = "0123456789ABCDEF";
    std::string out = "\"";
    bool lastWasHexEscape = false;
    for (std::size_t i = 0; i < s.size(); ++i) {
        const unsigned char c = static_cast<unsigned char>(s[i]);
        if (lastWasHexEscape && std::isxdigit(c))
            out += "\" \"";
        lastWasHexEscape = false;
        switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\t': out += "\\t"; break;
        case '?':
            // A '?' right after another one is escaped, so that the output
            // never holds "??" and no compiler can read a trigraph.
            out += (i > 0 && s[i - 1] == '?') ? "\\?" : "?";
            break;
        default:
            if (c >= 0x20 && c < 0x7F) {
                out.push_back(static_cast<char>(c));
            } else {
                out += "\\x";
                out.push_back(hex[c >> 4]);
                out.push_back(hex[c & 0xF]);
                lastWasHexEscape = true;
            }
        }
    }
    out += "\"";
    return out;
}

// Writes a balanced tree of comparisons over rows[lo, hi), which are sorted
// by id as signed 32-bit numbers. Every path ends in a return.
template <typename ValueOf>
void EmitTree(std::ostream& os, const std::vector<const Row*>& rows, std::size_t lo, std::size_t hi, int depth,
              const ValueOf& valueOf)
{
    const std::string ind(static_cast<std::size_t>(depth) * 4, ' ');
    if (hi - lo <= 2) {
        for (std::size_t i = lo; i < hi; ++i)
            os << ind << "if (v == " << rows[i]->key << ")\n" << ind << "    return " << valueOf(*rows[i]) << ";\n";
        os << ind << "return \"\";\n";
        return;
    }
    const std::size_t mid = lo + (hi - lo) / 2;
    os << ind << "if (v < " << rows[mid]->key << ") {\n";
    EmitTree(os, rows, lo, mid, depth + 1, valueOf);
    os << ind << "}\n";
    EmitTree(os, rows, mid, hi, depth, valueOf);
}

const char* const kIdRuleComment =
    "// Ids of rows written as \"auto\" in the table are assigned by the generator:\n"
    "// FNV-1a 32-bit hash of the key's bytes (offset basis 0x811C9DC5, prime\n"
    "// 0x01000193); while the value is 0, or equals an id given in the table, or\n"
    "// an id assigned to an earlier auto row, add 1 (mod 2^32) and retry.\n";

std::string MakeHeader(const std::vector<Row>& rows, const std::string& inputName)
{
    std::ostringstream os;
    os << "// Generated by GenStrings from " << inputName << ". Do not edit: change the table\n"
       << "// and rebuild.\n"
       << "//\n"
       << "// One id per row of the string table. Ids are 32-bit constants spread over the\n"
       << "// whole range, not running numbers; they compare as signed 32-bit numbers.\n"
       << kIdRuleComment
       << "\n"
       << "#ifndef MURCOREDATA_GEN_STRINGS_STRINGIDS_H\n"
       << "#define MURCOREDATA_GEN_STRINGS_STRINGIDS_H\n"
       << "\n"
       << "#include <cstdint>\n"
       << "\n"
       << "namespace CoreData {\n"
       << "\n"
       << "enum StringId : int32_t {\n";
    for (const Row& r : rows) {
        os << "    " << r.key << " = (int32_t)" << Hex8(r.id) << "u,";
        if (r.autoId)
            os << " // assigned";
        os << "\n";
    }
    os << "};\n"
       << "\n"
       << "} // namespace CoreData\n"
       << "\n"
       << "#endif // MURCOREDATA_GEN_STRINGS_STRINGIDS_H\n";
    return os.str();
}

std::string MakeSource(const std::vector<Row>& rows, const std::string& inputName)
{
    std::vector<const Row*> sorted;
    sorted.reserve(rows.size());
    for (const Row& r : rows)
        sorted.push_back(&r);
    std::sort(sorted.begin(), sorted.end(), [](const Row* a, const Row* b) {
        return static_cast<int32_t>(a->id) < static_cast<int32_t>(b->id);
    });

    std::ostringstream os;
    os << "// Generated by GenStrings from " << inputName << ". Do not edit: change the table\n"
       << "// and rebuild.\n"
       << "//\n"
       << "// " << rows.size() << " rows. Each look-up is a balanced tree of comparisons on the id as a\n"
       << "// signed 32-bit number: no table in memory, nothing to initialise, no allocation.\n"
       << "// Texts are UTF-8, byte for byte as in the table.\n"
       << "\n"
       << "#include \"murcoredata/gen-strings/StringIds.h\"\n"
       << "#include \"murcoredata/gen-strings/StringTableInternal.h\"\n"
       << "\n"
       << "namespace CoreData {\n"
       << "\n"
       << "const char* LookupStringValue_Internal(StringId id)\n"
       << "{\n"
       << "    const int32_t v = static_cast<int32_t>(id);\n";
    EmitTree(os, sorted, 0, sorted.size(), 1, [](const Row& r) { return CLiteral(r.text); });
    os << "}\n"
       << "\n"
       << "const char* LookupStringKey_Internal(StringId id)\n"
       << "{\n"
       << "    const int32_t v = static_cast<int32_t>(id);\n";
    EmitTree(os, sorted, 0, sorted.size(), 1, [](const Row& r) { return CLiteral(r.key); });
    os << "}\n"
       << "\n"
       << "} // namespace CoreData\n";
    return os.str();
}

void WriteFile(const std::filesystem::path& path, const std::string& content)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << content;
    out.close();
    if (!out) {
        std::cerr << "GenStrings: error: cannot write " << path.string() << "\n";
        std::exit(1);
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "usage: GenStrings <input.tsv> <output-dir>\n";
        return 2;
    }
    const std::string inputPath = argv[1];
    g_inputName = inputPath;
    const std::filesystem::path outDir = argv[2];

    std::vector<Row> rows = ReadRows(inputPath);
    CheckAndAssignIds(rows);

    // Only the file name goes into the output, so that it does not depend on
    // where the source tree lives.
    const std::string inputName = std::filesystem::path(inputPath).filename().string();
    const std::string header = MakeHeader(rows, inputName);
    const std::string source = MakeSource(rows, inputName);

    std::error_code ec;
    std::filesystem::create_directories(outDir, ec);
    if (ec) {
        std::cerr << "GenStrings: error: cannot create " << outDir.string() << ": " << ec.message() << "\n";
        return 1;
    }
    WriteFile(outDir / "StringIds.h", header);
    WriteFile(outDir / "StringTable.cpp", source);
    return 0;
}
