#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "ovix/Value.h"
#include "platform/plist/PropertyListReader.h"

namespace {

using ovix::Value;
using ovix::platform::PropertyListReader;

std::string xmlArrays(std::size_t depth) {
    std::string open, close;
    for (std::size_t i = 0; i < depth; ++i, open += "<array>", close += "</array>") {
    }
    return "<plist version=\"1.0\">" + open + "<string>x</string>" + close + "</plist>";
}

std::string bigEndian(std::uint64_t v, int width) {
    std::string out;
    for (int i = width - 1; i >= 0; --i) {
        out += static_cast<char>((v >> (8 * i)) & 0xFF);
    }
    return out;
}

// A binary list of `depth` arrays, each holding the next; the last holds nothing, or the first
// when `cycle` makes the list refer back into itself.
std::string binaryArrays(std::uint64_t depth, bool cycle = false) {
    std::string bytes = "bplist00";
    std::string offsets;
    for (std::uint64_t i = 0; i < depth; ++i) {
        offsets += bigEndian(bytes.size(), 4);
        const bool last = i + 1 == depth;
        if (last && !cycle) {
            bytes += '\xA0';
        } else {
            bytes += '\xA1' + bigEndian(last ? 0 : i + 1, 4);
        }
    }
    const std::uint64_t table = bytes.size();
    return bytes + offsets + std::string(6, '\0') + "\x04\x04" + bigEndian(depth, 8) + bigEndian(0, 8) +
           bigEndian(table, 8);
}

}  // namespace

TEST(PropertyListReader, NestingIsBoundedBeforeTheLibraryRecurses) {
    const std::size_t limit = Value::maxNestingDepth;
    struct Case {
        const char* name;
        std::string bytes;
        bool accepted;
    };
    const Case cases[] = {
        {"xml at the limit", xmlArrays(limit), true},
        {"xml one deeper", xmlArrays(limit + 1), false},
        {"xml a million deep", xmlArrays(1000000), false},
        {"binary at the limit", binaryArrays(limit), true},
        {"binary one deeper", binaryArrays(limit + 1), false},
        {"binary 100000 deep", binaryArrays(100000), false},
        {"binary referring to itself", binaryArrays(3, true), false},
        {"binary with a truncated table", binaryArrays(3).substr(0, 20), false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(PropertyListReader::parse(c.bytes).has_value(), c.accepted);
    }
}

TEST(PropertyListReader, XmlHoldingANulByteIsRefusedWithoutAborting) {
    for (const std::string& xml : {std::string("<plist><string>a\0b</string></plist>", 36),
                                   std::string("<plist><dict><key>a\0b</key><true/></dict></plist>", 47)}) {
        EXPECT_FALSE(PropertyListReader::parse(xml)) << xml.size();
    }
}

TEST(PropertyListReader, EveryInputThatOnceCrashedIsReadOrRefused) {
    int inputs = 0;
    for (const auto& entry : std::filesystem::directory_iterator(OVIX_FUZZ_REGRESSIONS "/property_list")) {
        SCOPED_TRACE(entry.path().filename().string());
        std::stringstream bytes;
        bytes << std::ifstream(entry.path(), std::ios::binary).rdbuf();
        EXPECT_FALSE(PropertyListReader::parse(bytes.str()));
        ++inputs;
    }
    EXPECT_GT(inputs, 0);
}
