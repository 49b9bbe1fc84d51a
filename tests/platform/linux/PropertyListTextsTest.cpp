#include "platform/PropertyList.h"

#include "tests/support/BinaryPropertyList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <map>
#include <memory>
#include <optional>
#include <plist/plist.h>
#include <string>
#include <vector>

namespace vantry {

namespace {

using namespace std::string_literals;

using Texts = std::map<std::string, std::string>;

const std::vector<std::string> keys{"Name", "Identifier", "Größe"};

/// Nothing for what is refused.
std::optional<Texts> textsOf(std::string_view bytes) {
    auto texts = propertyListTexts(bytes, keys);
    if (texts)
        return std::move(*texts);
    EXPECT_EQ(texts.error().kind, ErrorKind::invalid);
    EXPECT_FALSE(texts.error().message.empty());
    return std::nullopt;
}

std::string xml(const std::string& entries) { return "<plist version=\"1.0\"><dict>" + entries + "</dict></plist>"; }

std::optional<Texts> textsOfEntries(const std::string& entries) { return textsOf(xml(entries)); }

std::string repeatedText(const std::string& text, std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

/// One entry, "Name", with what `add` adds.
template <class Add>
BinaryPropertyList listOf(Add add) {
    BinaryPropertyList list;
    list.add({});
    const auto key = list.addAscii("Name");
    const std::size_t value = add(list);
    list.objects[0] = list.dictionary({key, value});
    return list;
}

const BinaryPropertyList plainList = listOf([](auto& list) { return list.addAscii("text"); });

/// What libplist makes of a few values of every kind.
std::string writtenByLibplist(bool binary) {
    const auto made = std::unique_ptr<void, void (*)(void*)>(plist_new_dict(), plist_free);
    const auto set = [&](const char* key, plist_t value) { plist_dict_set_item(made.get(), key, value); };
    set("Name", plist_new_string("<a> & \"b\" 'c' é 😀"));
    set("Größe", plist_new_string(std::string(1000, 'x').c_str()));
    set("Identifier", plist_new_uint(7));
    set("Yes", plist_new_bool(1));
    set("Real", plist_new_real(1.5));
    set("Date", plist_new_date(1, 2));
    set("Data", plist_new_data("\0\xff", 2));
    plist_t array = plist_new_array();
    plist_array_append_item(array, plist_new_string("Name"));
    plist_array_append_item(array, plist_new_dict());
    set("Array", array);
    char* text = nullptr;
    std::uint32_t length = 0;
    (binary ? plist_to_bin : plist_to_xml)(made.get(), &text, &length);
    std::string bytes(text, length);
    std::free(text);
    return bytes;
}

void expectQuick(std::string_view bytes, const std::optional<Texts>& expected) {
    const std::clock_t begin = std::clock(); // of the processor: how busy the machine is does not count
    EXPECT_EQ(textsOf(bytes), expected);
    EXPECT_LT(std::clock() - begin, std::clock_t{20} * CLOCKS_PER_SEC); // milliseconds, without a sanitizer
}

} // namespace

TEST(PropertyListTexts, AreThoseOfAnotherWriter) {
    const Texts expected{{"Name", "<a> & \"b\" 'c' é 😀"}, {"Größe", std::string(1000, 'x')}};
    EXPECT_EQ(textsOf(writtenByLibplist(false)), expected);
    EXPECT_EQ(textsOf(writtenByLibplist(true)), expected);
}

TEST(PropertyListTexts, AreThoseThatWereWritten) {
    using List = PropertyList;
    const auto written = xmlPropertyList({List::Dictionary{
        {"Name", {"a\tb\n<>&\"'é😀"s}},
        {"Identifier", {true}},
        {"Nested", {List::Dictionary{{"Identifier", {"inside"s}}}}},
    }});
    ASSERT_TRUE(written);
    EXPECT_EQ(textsOf(*written), (Texts{{"Name", "a\tb\n<>&\"'é😀"}}));
}

TEST(PropertyListTexts, AreNoneWithoutKeysOrForKeysThatAreNotThere) {
    EXPECT_EQ(propertyListTexts(xml("<key>Name</key><string>a</string>"), {}), Texts{});
    EXPECT_EQ(propertyListTexts(plainList.bytes(), {}), Texts{});
    const std::array<std::string, 4> others{"name", "Nam", "Name ", "Name\0"s};
    EXPECT_EQ(propertyListTexts(xml("<key>Name</key><string>a</string>"), others), Texts{});
    EXPECT_EQ(propertyListTexts(plainList.bytes(), others), Texts{});
    EXPECT_EQ(textsOf("<plist><dict/></plist>"), Texts{});
    EXPECT_EQ(textsOf(xml("")), Texts{});
}

TEST(PropertyListTexts, OfXmlAreReadInEveryWayOfWritingThem) {
    const struct {
        std::string entries;
        Texts texts;
    } cases[] = {
        {"<key>Name</key><string>a</string>", {{"Name", "a"}}},
        {"\r\n\t<key>Name</key> <!-- a --> <?b c?><string> a </string>\n", {{"Name", " a "}}},
        {"<key >Name</key ><string a=\"b>\" c='</string>'>a</string\n>", {{"Name", "a"}}},
        {"<key>Name</key><string/>", {{"Name", ""}}},
        {"<key>Name</key><string />", {{"Name", ""}}},
        {"<key>Name</key><string></string>", {{"Name", ""}}},
        {"<key>Na<!--x-->me</key><string>a<!--</string>-->b</string>", {{"Name", "ab"}}},
        {"<key>Name</key><string>a<?x </string>?> <?y?></string>", {{"Name", "a "}}},
        {"<key>Name</key><string>a<![CDATA[<&]>]]>b<![CDATA[]]></string>", {{"Name", "a<&]>b"}}},
        {"<key><![CDATA[Name]]></key><string>a</string>", {{"Name", "a"}}},
        {"<key>&#78;&#x61;me</key><string>&lt;&gt;&amp;&quot;&apos;</string>", {{"Name", "<>&\"'"}}},
        {"<key>Name</key><string>&#9;&#10;&#x20;&#xe9;&#x20AC;&#128512;&#x10FFFF;</string>",
         {{"Name", "\t\n é€😀\U0010ffff"}}},
        {"<key>Größe</key><string>é</string>", {{"Größe", "é"}}},
        {"<key>Name</key><string>1</string><key>Identifier</key><string>2</string>",
         {{"Name", "1"}, {"Identifier", "2"}}},
        {"<key>Name</key><string>1</string><key>Name</key><string>2</string>", {{"Name", "2"}}},
        {"<key>Name</key><string>1</string><key>Name</key><true/>", {}},
        {"<key>Name</key><true/><key>Name</key><string>2</string>", {{"Name", "2"}}},
        {"<key>Name</key><integer>1</integer><key>Identifier</key><date/>", {}},
        {"<key>Name</key><array><string>a</string></array>", {}},
        {"<key>Name</key><dict><key>Identifier</key><string>a</string></dict>", {}},
        {"<key>x</key><dict><key>Name</key><string>a</string></dict><key/><array/>", {}},
        {"<key>a</key><true/><key>b</key><false></false><key>c</key><real>1</real><key>d</key><data>AA==</data>", {}},
    };
    for (const auto& [entries, texts] : cases)
        EXPECT_EQ(textsOfEntries(entries), texts) << entries;
    const std::string entries = "<key>Name</key><string>a</string>";
    const std::string dictionary = "<dict>" + entries + "</dict>";
    for (const std::string& document : {
             "\xef\xbb\xbf" + xml(entries),
             "<?xml version=\"1.0\"?>" + xml(entries),
             "<?xml version=\"1.0\" encoding=\"UTF-8\"?>" + xml(entries),
             "<?xml version='1.0' encoding = 'utf-8' standalone='yes'?>\n" + xml(entries),
             "\xef\xbb\xbf<?xml version=\"1.0\" encoding=\"US-ASCII\"?>" + xml(entries),
             "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/[>.dtd\">" +
                 xml(entries),
             "<!-- a --><!DOCTYPE plist SYSTEM \"file://localhost/a.dtd\" ><!-- b -->" + xml(entries) + "<!-- c -->\n",
             "<plist>" + dictionary + "</plist>",
             "<plist version=\"1.0\"> <!-- <dict> -->" + dictionary + "\n</plist >\n",
         })
        EXPECT_EQ(textsOf(document), (Texts{{"Name", "a"}})) << document;
}

TEST(PropertyListTexts, OfXmlThatIsNoPropertyListAreRefused) {
    const std::string entry = "<key>Name</key><string>a</string>";
    for (const auto& entries : {
             "<key>Name</key>"s,
             "<string>a</string>"s,
             "text"s,
             entry + "text",
             "<key>Name</key>text<string>a</string>"s,
             "<key>Name</key><key>Name</key><string>a</string>"s,
             "<key>Name</key><string>a</key>"s,
             "<key>Name</string><string>a</string>"s,
             "<key>Name</key><string><b/>a</string>"s,
             "<key>Name</key><string><?a</string>"s,
             "<key>Name</key><text>a</text>"s,
             "<key>Name</key><String>a</String>"s,
             "<key>Name</key></string>"s,
             "<key>Name</key><plist/>"s,
             "<key>Name</key><string1>a</string1>"s,
             "<key>Name</key><array><key>a</key></array>"s,
             "<key>Name</key><array></dict>"s,
             "<key>Name</key><array>a</array>"s,
             "<key>Name</key></string/>"s,
             "<key>Name</key>< string>a</string>"s,
             "<key>Name</key><string a=\"b>a</string>"s,
             "<key>Name</key><string <b>a</string>"s,
             "<key>Name</key><string>&unknown;</string>"s,
             "<key>Name</key><string>&;</string>"s,
             "<key>Name</key><string>&</string>"s,
             "<key>Name</key><string>&amp</string>"s,
             "<key>Name</key><string>&#;</string>"s,
             "<key>Name</key><string>&#x;</string>"s,
             "<key>Name</key><string>&#xg;</string>"s,
             "<key>Name</key><string>&#a;</string>"s,
             "<key>Name</key><string>&#-1;</string>"s,
             "<key>Name</key><string>&#0;</string>"s,
             "<key>Name</key><string>&#8;</string>"s,
             "<key>Name</key><string>&#xd800;</string>"s,
             "<key>Name</key><string>&#xdfff;</string>"s,
             "<key>Name</key><string>&#x110000;</string>"s,
             "<key>Name</key><string>&#4294967360;</string>"s,
             "<key>Name</key><string>&#x10000000000000041;</string>"s,
             "<key>Name</key><string>&#00000000000000000065;</string>"s,
             "<key>Name</key><integer>&unknown;</integer>"s,
             "<key>Name</key><string><![CDATA[a</string>"s,
             "<key>Name</key><string><!--a</string>"s,
             "<key>Name</key><string>\xff</string>"s,
             "<key>Name</key><string>\xed\xa0\x80</string>"s,
             "<key>Name</key><string>a\0</string>"s,
             entry + "<!--",
             entry + "<?",
             entry + "</dict>",
             entry + "<dict>",
         })
        EXPECT_EQ(textsOfEntries(entries), std::nullopt) << entries;
    const std::string list = xml(entry);
    for (const auto& document : {
             ""s,
             " "s,
             "<"s,
             "\xef\xbb\xbf"s,
             "plist"s,
             "{ Name = a; }"s,
             "{\"Name\":\"a\"}"s,
             "<plist>"s,
             "<plist/>"s,
             "<plist></plist>"s,
             "<plist>" + entry + "</plist>",
             "<dict>" + entry + "</dict>",
             "<plist><array><dict>" + entry + "</dict></array></plist>",
             "<plist><string>Name</string></plist>"s,
             "<plist><dict/><dict/></plist>"s,
             "</plist>"s + list,
             "text" + list,
             list + "text",
             list + list,
             list + "<!--",
             list + '\0',
             "<html>" + list + "</html>",
             "\xfe\xff" + list,
             "\xff\xfe<\0p\0"s,
             "<?xml version=\"1.0\" encoding=\"UTF-16\"?>" + list,
             "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + list,
             "<?xml version=\"1.0\" encoding=\"\"?>" + list,
             "<?xml version=\"1.0\" encoding?>" + list,
             "<?xml version=\"1.0\" encoding=?>" + list,
             "<?xml version=\"1.0\" encoding=\"utf-8?>" + list,
             "<?xml version=\"1.0\"" + list,
             "<!DOCTYPE plist [<!ENTITY a \"b\">]>" + list,
             "<!DOCTYPE plist []>" + list,
             "<!DOCTYPE plist" + list,
             "<!DOCTYPE plist \"" + list,
             "<!DOCTYPE plist><!DOCTYPE plist>" + list,
             "<!ENTITY a \"b\">" + list,
         })
        EXPECT_EQ(textsOf(document), std::nullopt) << document;
}

TEST(PropertyListTexts, OfABinaryListAreReadWithNumbersOfEverySize) {
    const Texts expected{{"Name", "text"}};
    EXPECT_EQ(textsOf(plainList.bytes()), expected);
    for (std::size_t offsetSize = 1; offsetSize <= 8; ++offsetSize)
        for (std::size_t referenceSize = 1; referenceSize <= 8; ++referenceSize) {
            BinaryPropertyList list{.objects = {}, .offsetSize = offsetSize, .referenceSize = referenceSize};
            const auto text = list.addAscii("text");
            const auto key = list.addAscii("Name");
            list.top = list.add(list.dictionary({key, text}));
            EXPECT_EQ(textsOf(list.bytes()), expected) << offsetSize << ' ' << referenceSize;
        }
    for (std::size_t power = 0; power <= 3; ++power) {
        const auto list = listOf([&](auto& made) {
            return made.add("\x5f" + bigEndian(0x10 | power, 1) + bigEndian(4, std::size_t{1} << power) + "text");
        });
        EXPECT_EQ(textsOf(list.bytes()), expected) << power;
    }
}

TEST(PropertyListTexts, OfABinaryListAreThoseOfValidUnicode) {
    const struct {
        std::u16string units;
        std::optional<std::string> text;
    } cases[] = {
        {u"", ""},
        {u"a\u007f\u0080\u07ff\u0800\ud7ff\ue000\uffff", "a\x7f\u0080\u07ff\u0800\ud7ff\ue000\uffff"},
        {u"é€😀", "é€😀"},
        {u"\U00010000\U0010ffff", "\U00010000\U0010ffff"},
        {{u'a', 0xd800}, std::nullopt},
        {{0xd800, u'a'}, std::nullopt},
        {{0xdc00, 0xd800}, std::nullopt},
        {{0xd800, 0xd800, 0xdc00}, std::nullopt},
        {{0xdfff}, std::nullopt},
        {{u'a', 0, u'b'}, std::nullopt},
    };
    for (const auto& [units, text] : cases) {
        const auto list = listOf([&](auto& made) { return made.addUtf16(units); });
        EXPECT_EQ(textsOf(list.bytes()), text ? Texts({{"Name", *text}}) : Texts()) << testing::PrintToString(units);
    }
    for (const auto& text : {"caf\xe9"s, "\x80"s, "é"s, "a\0"s}) {
        const auto list = listOf([&](auto& made) { return made.addAscii(text); });
        EXPECT_EQ(textsOf(list.bytes()), Texts{}) << text;
    }
}

TEST(PropertyListTexts, OfABinaryListStandUnderKeysOfEitherKind) {
    BinaryPropertyList list;
    list.add({});
    const auto text = list.addUtf16(u"é");
    const auto name = list.addUtf16(u"Name");
    const auto size = list.addUtf16(u"Größe");
    const auto bytes = list.addAscii("Größe"); // no ASCII
    list.objects[0] = list.dictionary({name, size, bytes, text, text, name});
    EXPECT_EQ(textsOf(list.bytes()), (Texts{{"Name", "é"}, {"Größe", "é"}}));
    const auto number = list.add("\x10\x01");
    list.objects[0] = list.dictionary({name, size, name, text, text, size});
    EXPECT_EQ(textsOf(list.bytes()), (Texts{{"Name", "Größe"}, {"Größe", "é"}}));
    list.objects[0] = list.dictionary({name, size, name, text, text, number});
    EXPECT_EQ(textsOf(list.bytes()), (Texts{{"Größe", "é"}}));
}

TEST(PropertyListTexts, OfABinaryListAreReadBesideValuesOfEveryKind) {
    for (const auto& object :
         {"\0"s, "\x08"s, "\x09"s, "\x10\x01"s, "\x11\x01\x02"s, "\x12" + "abcd"s, "\x13" + "abcdefgh"s,
          "\x14" + std::string(16, 'a'), "\x22" + "abcd"s, "\x23" + "abcdefgh"s, "\x33" + "abcdefgh"s, "\x40"s,
          "\x42" + "ab"s, "\x80\x01"s, "\x8f" + std::string(16, 'a'), "\xa0"s, "\xd0"s}) {
        BinaryPropertyList list = plainList;
        list.add(object);
        list.objects[0] = list.dictionary({1, 2, 2, 3});
        EXPECT_EQ(textsOf(list.bytes()), (Texts{{"Name", "text"}})) << testing::PrintToString(object);
        list.objects[0] = list.dictionary({1, 3});
        EXPECT_EQ(textsOf(list.bytes()), Texts{}) << testing::PrintToString(object);
    }
}

TEST(PropertyListTexts, OfABinaryListWithABrokenObjectAreRefused) {
    for (const auto& object : {
             ""s, // nothing but the table behind it
             "\x01"s,
             "\x0f"s, // no such constants
             "\x15" + std::string(32, 'a'),
             "\x21\x01\x02"s, // no such sizes
             "\x24" + std::string(16, 'a'),
             "\x32" + "abcd"s, //
             "\x70"s,
             "\x90"s,
             "\xb0"s,
             "\xc0"s,
             "\xe0"s,
             "\xf0"s, // no such kinds
             "\x11\x01"s,
             "\x23" + "abcdefg"s,
             "\x33"s,
             "\x41"s,
             "\x5e"s,
             "\x62" + "abc"s,
             "\x81\x01"s, // cut off
             "\x5f"s,
             "\x5f\x10"s,
             "\x5f\x11\x01"s,
             "\x5f\x10\x03" + "ab"s,
             "\x5f\x20\x01" + "a"s,
             "\x5f\x14" + std::string(15, '\0') + "\x01" + "a", // a count of 16 bytes
             "\x5f\x13" + std::string(8, '\xff') + "ab",        // huge counts
             "\x6f\x13\x80\0\0\0\0\0\0\x01" + "ab"s,            //
             "\xaf\x13\x80\0\0\0\0\0\0\x01" + "ab"s,            //
             "\xdf\x13\x40\0\0\0\0\0\0\x01" + "abcd"s,          //
             "\xdf\x12\xff\xff\xff\xff" + "abcd"s,              //
             "\xa1\0"s,
             "\xd1\0\1\0"s, // half a reference
             "\xa1\0\x09"s,
             "\xa1\xff\xff"s, // to an object that is not there
             "\xd1\0\0\0\1"s, // a key that is no text: a dictionary
             "\xd1\0\3\0\1"s, // itself
         }) {
        BinaryPropertyList list = plainList;
        list.add(object);
        list.objects[0] = list.dictionary({1, 2, 2, 3});
        EXPECT_EQ(textsOf(list.bytes()), std::nullopt) << testing::PrintToString(object);
    }
}

TEST(PropertyListTexts, OfABinaryListWithABrokenTrailerAreRefused) {
    const std::string good = plainList.bytes();
    const std::size_t table = good.size() - 32 - 3 * plainList.offsetSize;
    const std::string body = good.substr(0, good.size() - 32);
    const auto with = [&](std::size_t offsetSize, std::size_t referenceSize, std::uint64_t count, std::uint64_t top,
                          std::uint64_t offset) {
        return body +
               BinaryPropertyList{.objects = {}, .offsetSize = offsetSize, .referenceSize = referenceSize, .top = top}
                   .trailer(count, offset);
    };
    EXPECT_EQ(with(4, 2, 3, 0, table), good);
    constexpr std::uint64_t huge = 1ULL << 62;
    for (const auto& bytes : {with(0, 2, 3, 0, table),
                              with(9, 2, 3, 0, table),
                              with(255, 2, 3, 0, table),
                              with(4, 0, 3, 0, table),
                              with(4, 9, 3, 0, table),
                              with(4, 1, 3, 0, table),
                              with(4, 4, 3, 0, table),
                              with(2, 2, 3, 0, table),
                              with(4, 2, 0, 0, table),
                              with(4, 2, 2, 0, table),
                              with(4, 2, 4, 0, table),
                              with(4, 2, huge, 0, table),
                              with(4, 2, huge + 3, 0, table),
                              with(4, 2, ~0ULL, 0, table),
                              with(4, 2, 3, 3, table),
                              with(4, 2, 3, ~0ULL, table),
                              with(4, 2, 3, 1, table),
                              with(4, 2, 3, 0, 0),
                              with(4, 2, 3, 0, 7),
                              with(4, 2, 3, 0, table - 1),
                              with(4, 2, 3, 0, table + 1),
                              with(4, 2, 3, 0, good.size()),
                              with(4, 2, 3, 0, ~0ULL),
                              with(4, 2, 3, 0, ~0ULL - table),
                              good + '\0',
                              "bplist00"s,
                              "bplist00" + good.substr(good.size() - 32),
                              "bplist01" + good.substr(8),
                              "bplist" + good.substr(8)})
        EXPECT_EQ(textsOf(bytes), std::nullopt);
    // Offsets into the magic, the table and beyond the end.
    for (const std::uint64_t offset : {0ULL, 7ULL, static_cast<unsigned long long>(table), 0xffffffffULL}) {
        std::string bytes = good;
        bytes.replace(table, 4, bigEndian(offset, 4));
        EXPECT_EQ(textsOf(bytes), std::nullopt) << offset;
    }
}

TEST(PropertyListTexts, OfAListThatIsCutOffOrHasAWrongByteDoNoHarm) {
    for (std::string sample : {writtenByLibplist(true), writtenByLibplist(false), plainList.bytes(),
                               xml("<key>Name</key><string>a</string>")}) {
        sample.erase(sample.find_last_not_of('\n') + 1);
        ASSERT_NE(textsOf(sample), std::nullopt);
        for (std::size_t length = 0; length < sample.size(); ++length)
            EXPECT_EQ(textsOf(std::string_view(sample).substr(0, length)), std::nullopt) << length;
        for (std::size_t at = 0; at < sample.size(); ++at)
            for (const int wrong : {0x00, 0x01, 0x0f, 0x3c, 0x5f, 0x7f, 0x80, 0xaf, 0xdf, 0xff}) {
                std::string bytes = sample;
                bytes[at] = static_cast<char>(wrong);
                const auto texts = textsOf(bytes);
                for (const auto& [key, text] : texts.value_or(Texts()))
                    EXPECT_NE(std::ranges::find(keys, key), keys.end());
            }
    }
}

TEST(PropertyListTexts, AreReadFromAListOfTheLargestSizeAndNoLarger) {
    const std::string list = xml("<key>Name</key><string>a</string>");
    std::string padded = list + std::string(largestPropertyList - list.size(), ' ');
    expectQuick(padded, Texts{{"Name", "a"}});
    padded += ' ';
    expectQuick(padded, std::nullopt);

    const auto binary = [](std::size_t size) {
        auto made = plainList;
        const std::size_t rest = size - made.bytes().size() - made.offsetSize - 6;
        made.add(BinaryPropertyList::header(0x4, rest) + std::string(rest, 'x'));
        return made.bytes();
    };
    ASSERT_EQ(binary(largestPropertyList).size(), largestPropertyList);
    expectQuick(binary(largestPropertyList), Texts{{"Name", "text"}});
    expectQuick(binary(largestPropertyList + 1), std::nullopt);
}

TEST(PropertyListTexts, AreReadFromADeepListAndNoDeeper) {
    const auto deepXml = [](std::size_t levels, const std::string& open, const std::string& close) {
        return xml("<key>Name</key><string>a</string><key>x</key>" + repeatedText(open, levels - 1) +
                   repeatedText(close, levels - 1));
    };
    const auto deepBinary = [](std::size_t levels, bool dictionaries) {
        auto list = plainList;
        std::size_t inner = list.add("\x09");
        for (std::size_t level = 1; level < levels; ++level)
            inner = list.add(dictionaries ? list.dictionary({1, inner}) : list.array({inner}));
        list.objects[0] = list.dictionary({1, 2, 2, inner});
        return list.bytes();
    };
    const Texts xmlTexts{{"Name", "a"}};
    const Texts binaryTexts{{"Name", "text"}};
    for (const std::size_t levels : {deepestPropertyList - 1, deepestPropertyList}) {
        EXPECT_EQ(textsOf(deepXml(levels, "<array>", "</array>")), xmlTexts) << levels;
        // The innermost dictionary holds an empty one in place of a value, one level less.
        EXPECT_EQ(textsOf(deepBinary(levels, false)), binaryTexts) << levels;
        EXPECT_EQ(textsOf(deepBinary(levels, true)), binaryTexts) << levels;
    }
    const std::string nested = xml(repeatedText("<key>x</key><dict>", deepestPropertyList - 1) +
                                   repeatedText("</dict>", deepestPropertyList - 1));
    EXPECT_EQ(textsOf(nested), Texts{});
    const std::string tooDeep = xml(repeatedText("<key>x</key><dict>", deepestPropertyList - 1) +
                                    "<key>x</key><dict/>" + repeatedText("</dict>", deepestPropertyList - 1));
    EXPECT_EQ(textsOf(tooDeep), std::nullopt);
    for (const std::size_t levels : {deepestPropertyList + 1, std::size_t{1000}, std::size_t{500'000}})
        expectQuick(deepXml(levels, "<array>", "</array>"), std::nullopt);
    for (const std::size_t levels : {deepestPropertyList + 1, std::size_t{1000}, std::size_t{60'000}}) {
        expectQuick(deepBinary(levels, false), std::nullopt);
        expectQuick(deepBinary(levels, true), std::nullopt);
    }
    expectQuick(xml("<key>x</key>" + repeatedText("<array>", 1'000'000)), std::nullopt);
}

TEST(PropertyListTexts, AreReadFromAListOfManyValuesAndNoMore) {
    // The dictionary, its two keys and values are five of them.
    const auto wideXml = [](std::size_t values) {
        return xml("<key>Name</key><string>a</string><key>x</key><array>" + repeatedText("<true/>", values - 5) +
                   "</array>");
    };
    const auto wideBinary = [](std::size_t values) {
        auto list = plainList;
        const auto leaf = list.add("\x09");
        const auto inner = list.add(list.array(std::vector<std::size_t>(values - 5, leaf)));
        list.objects[0] = list.dictionary({1, 2, 2, inner});
        return list.bytes();
    };
    for (const std::size_t values : {mostPropertyListValues - 1, mostPropertyListValues}) {
        expectQuick(wideXml(values), Texts{{"Name", "a"}});
        expectQuick(wideBinary(values), Texts{{"Name", "text"}});
    }
    expectQuick(wideXml(mostPropertyListValues + 1), std::nullopt);
    expectQuick(wideBinary(mostPropertyListValues + 1), std::nullopt);
    expectQuick(xml(repeatedText("<key/><true/>", 600'000)), std::nullopt);
}

TEST(PropertyListTexts, AreReadToALengthAndNoLonger) {
    const std::string longest(longestPropertyListText, 'a');
    const auto xmlOf = [](const std::string& text) {
        return textsOfEntries("<key>Name</key><string>" + text + "</string><key>Identifier</key><string>b</string>");
    };
    EXPECT_EQ(xmlOf(longest), (Texts{{"Name", longest}, {"Identifier", "b"}}));
    EXPECT_EQ(xmlOf(longest.substr(1) + "&lt;"), (Texts{{"Name", longest.substr(1) + "<"}, {"Identifier", "b"}}));
    for (const auto& text : {longest + "a", longest + "&lt;", "<![CDATA[" + longest + "]]>a", longest + longest})
        EXPECT_EQ(xmlOf(text), (Texts{{"Identifier", "b"}}));
    EXPECT_EQ(textsOfEntries("<key>" + longest + "a</key><string>b</string>"), Texts{});

    const auto ascii = [](const std::string& text) {
        return textsOf(listOf([&](auto& list) { return list.addAscii(text); }).bytes());
    };
    EXPECT_EQ(ascii(longest), (Texts{{"Name", longest}}));
    EXPECT_EQ(ascii(longest + "a"), Texts{});
    const auto utf16 = [](const std::u16string& text) {
        return textsOf(listOf([&](auto& list) { return list.addUtf16(text); }).bytes());
    };
    EXPECT_EQ(utf16(std::u16string(longest.size(), u'a')), (Texts{{"Name", longest}}));
    EXPECT_EQ(utf16(std::u16string(longest.size() + 1, u'a')), Texts{});
    EXPECT_EQ(utf16(std::u16string(longest.size() / 2, u'é')),
              (Texts{{"Name", repeatedText("é", longest.size() / 2)}}));
    EXPECT_EQ(utf16(std::u16string(longest.size() / 2 + 1, u'é')), Texts{});
    EXPECT_EQ(utf16(std::u16string(longest.size(), u'é')), Texts{});
}

TEST(PropertyListTexts, OfAListThatSharesItsPartsManyTimesAreRefusedAtOnce) {
    auto list = plainList;
    std::size_t inner = list.add("\x09");
    for (int level = 0; level < 40; ++level)
        inner = list.add(list.array(std::vector<std::size_t>(14, inner)));
    list.objects[0] = list.dictionary({1, 2, 2, inner});
    EXPECT_LT(list.bytes().size(), 2000U);
    expectQuick(list.bytes(), std::nullopt);
}

TEST(PropertyListTexts, OfAListThatHoldsItselfAreRefused) {
    for (const auto& loop : {std::vector<std::size_t>{3}, {4}, {0}, {2, 3}}) {
        auto list = plainList;
        list.add(list.array(loop));
        list.add(list.array({3}));
        list.objects[0] = list.dictionary({1, 2, 2, 3});
        expectQuick(list.bytes(), std::nullopt);
    }
    auto list = plainList;
    list.objects[0] = list.dictionary({1, 0});
    expectQuick(list.bytes(), std::nullopt);
}

TEST(PropertyListTexts, ThatAreNamedManyTimesAreReadOnce) {
    // One long key and one long text in 30,000 entries; parts may lie in one another, too.
    auto list = listOf([](auto& made) { return made.addUtf16(std::u16string(60'000, u'a')); });
    const auto longKey = list.addAscii(std::string(4'000'000, 'k'));
    std::vector<std::size_t> parts(15'000, 1);
    parts.insert(parts.end(), 15'000, longKey);
    parts.insert(parts.end(), 30'000, 2);
    list.objects[0] = list.dictionary(parts);
    expectQuick(list.bytes(), Texts{{"Name", std::string(60'000, 'a')}});
}

TEST(PropertyListTexts, OfXmlThatIsOneLongBeginningAreRefusedAtOnce) {
    for (const std::string& piece :
         {"<!--"s, "<?"s, "<key>"s, "&"s, "&amp;"s, "<![CDATA["s, "<a "s, "\""s, "<!DOCTYPE"s}) {
        const std::string much = repeatedText(piece, 6'000'000 / piece.size());
        expectQuick(much, std::nullopt);
        expectQuick("<plist><dict><key>Name</key><string>" + much, std::nullopt);
        expectQuick("<plist><dict>" + much, std::nullopt);
    }
}

} // namespace vantry
