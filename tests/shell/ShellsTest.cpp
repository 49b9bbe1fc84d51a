// Compares the sources of the two front ends: each shows every field of every content, and files of the same name hold
// the same parts.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vantry {

namespace {

enum class Front { qt, appkit };

constexpr std::array fronts{Front::qt, Front::appkit};

std::string folderOf(Front front) { return front == Front::qt ? "shell/qt" : "shell/appkit"; }

/// A content, the header that declares it, and the files of each front end that show it.
struct Content {
    std::string_view name;
    std::string_view header;
    std::vector<std::string> shownByQt;
    std::vector<std::string> shownByAppKit;

    [[nodiscard]] const std::vector<std::string>& shownBy(Front front) const {
        return front == Front::qt ? shownByQt : shownByAppKit;
    }
};

constexpr std::string_view windowHeader = "cleanup/window/CleanupWindowContent.h";

const std::vector<Content> contents = {
    {"StatusItemContent", "app/StatusItemContent.h", {"TrayItem", "StripWindow"}, {"StatusItem"}},
    {"LabelContent", "app/PopoverContent.h", {"PopoverWindow"}, {"PopoverWindow"}},
    {"CheckBoxContent", "app/PopoverContent.h", {"PopoverWindow"}, {"PopoverWindow"}},
    {"ButtonContent", "app/PopoverContent.h", {"PopoverWindow"}, {"PopoverWindow"}},
    {"PopUpContent", "app/PopoverContent.h", {"PopoverWindow"}, {"PopoverWindow"}},
    {"PopoverContent", "app/PopoverContent.h", {"PopoverWindow"}, {"PopoverWindow"}},
    {"MenuItemContent", "app/ContextMenu.h", {"ContextMenuRenderer"}, {"ContextMenuRenderer"}},
    {"SubmenuContent", "app/ContextMenu.h", {"ContextMenuRenderer"}, {"ContextMenuRenderer"}},
    {"ContextMenuContent", "app/ContextMenu.h", {"ContextMenuRenderer"}, {"ContextMenuRenderer"}},
    {"SummaryCardContent", windowHeader, {"CleanupPanels"}, {"CleanupPanels"}},
    {"CleanupButtonContent", windowHeader, {"CleanupWindow"}, {"CleanupWindow"}},
    {"EmptyStateContent", windowHeader, {"CleanupResultsView"}, {"CleanupResultsView"}},
    {"CandidateRowContent", windowHeader, {"CandidateRowView"}, {"CandidateRowView"}},
    {"AvenueButtonContent", windowHeader, {"AvenueRowView"}, {"AvenueRowView"}},
    {"AvenueRowContent", windowHeader, {"AvenueRowView"}, {"AvenueRowView"}},
    {"CleanupSectionContent", windowHeader, {"CleanupSectionView"}, {"CleanupSectionView"}},
    {"CleanupWindowContent", windowHeader, {"CleanupWindow"}, {"CleanupWindow"}},
    {"AlertContent", windowHeader, {"AlertSheet"}, {"AlertSheet"}},
};

/// A field that a front end does not use.
struct Exception {
    Front front;
    std::string_view content;
    std::string_view field;
    std::string_view why;

    auto operator<=>(const Exception&) const = default;
};

const std::vector<Exception> exceptions = {
    {Front::qt, "MenuItemContent", "command", "an item is handed back as a whole"},
    {Front::qt, "MenuItemContent", "keyEquivalent", "an open menu of Qt reacts to no shortcut"},
    {Front::qt, "MenuItemContent", "representedObject", "an item is handed back as a whole"},
    {Front::appkit, "StatusItemContent", "menu", "macOS takes the menu when a right click opens it"},
};

/// Files with another name in the other front end.
const std::map<std::string, std::string> otherNames = {
    {"BarWidget", "BarView"}, {"GuardedApplication", "KeyGuard"}, {"TrayItem", "StatusItem"}};

/// Files without a counterpart.
const std::map<std::string, std::string_view> qtOnly = {
    {"CleanupControls", "AppKit has these controls"},
    {"ElidingLabel", "AppKit has this label"},
    {"FigureText", "AppKit has fonts with digits of one width"},
    {"OmbrelStyle", "AppKit has its style"},
    {"QtAppearance", "AppKit tells each view its appearance"},
    {"QtMainQueue", "platform/apple/AppleMainQueue"},
    {"QtPreferencesStore", "platform/apple/PreferencesStore"},
    {"QtWorkspace", "platform/apple/Workspace"},
    {"StripWindow", "macOS always has a menu bar"},
    {"TrayTracker", "macOS always has a menu bar"},
    {"X11Replies", "macOS has no X server"},
    {"X11Strut", "macOS always has a menu bar"},
    {"X11WindowList", "platform/apple/WindowList"},
};

const std::map<std::string, std::string_view> appkitOnly = {
    {"AppKitDrawing", "what the canvas needs of Objective-C, in QtCanvas"},
    {"MouseMonitor", "a popup of Qt sees every click by itself"},
    {"Stacks", "layouts and labels, which Qt has"},
};

std::string textOf(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::string withoutComments(const std::string& text) {
    return std::regex_replace(text, std::regex("//[^\n]*|/\\*[^*]*\\*/"), "");
}

std::string withoutTexts(const std::string& text) { return std::regex_replace(text, std::regex("\"[^\"\n]*\""), ""); }

/// `text` without braces and what is inside them.
std::string withoutBraces(std::string_view text) {
    std::string rest;
    int depth = 0;
    for (const char letter : text) {
        depth += letter == '{';
        if (depth == 0)
            rest += letter;
        depth -= letter == '}';
    }
    return rest;
}

/// The body of `struct name` in `header`.
std::string_view bodyOf(std::string_view name, std::string_view header) {
    const auto start = header.find("struct " + std::string(name) + " {");
    if (start == std::string_view::npos)
        return {};
    const auto open = header.find('{', start);
    int depth = 0;
    for (auto at = open; at < header.size(); ++at) {
        depth += header[at] == '{';
        depth -= header[at] == '}';
        if (depth == 0)
            return header.substr(open + 1, at - open - 1);
    }
    return {};
}

/// The fields of a struct of plain values, in their order.
std::vector<std::string> fieldsOf(std::string_view name, const std::string& header) {
    const std::string clean = withoutTexts(withoutComments(header));
    const std::string body = withoutBraces(bodyOf(name, clean));
    static const std::regex declaration("(\\w+)\\s*$");
    std::vector<std::string> fields;
    for (std::size_t begin = 0; begin < body.size();) {
        const auto end = std::min(body.find(';', begin), body.size());
        std::string statement = body.substr(begin, end - begin);
        begin = end + 1;
        if (statement.find("operator") != std::string::npos || statement.find("enum ") != std::string::npos)
            continue;
        statement.resize(std::min(statement.find('='), statement.size()));
        std::smatch match;
        if (std::regex_search(statement, match, declaration))
            fields.push_back(match[1]);
    }
    return fields;
}

bool isPartOfName(const std::string& text, std::size_t at) {
    return at < text.size() && (std::isalnum(static_cast<unsigned char>(text[at])) != 0 || text[at] == '_');
}

/// Whether something reads or writes a field of this name.
bool uses(const std::string& source, const std::string& field) {
    for (const std::string& use : {"." + field, "->" + field, "::" + field})
        for (auto at = source.find(use); at != std::string::npos; at = source.find(use, at + 1))
            if (!isPartOfName(source, at + use.size()))
                return true;
    return false;
}

/// The `fields` that `source` does not use.
std::vector<std::string> unusedFields(std::vector<std::string> fields, const std::string& source) {
    std::erase_if(fields, [&](const std::string& field) { return uses(source, field); });
    return fields;
}

/// `text` without every occurrence of `word` as a whole word.
std::string withoutWord(const std::string& text, const std::string& word) {
    std::string rest;
    for (std::size_t at = 0; at < text.size();) {
        const bool found = text.compare(at, word.size(), word) == 0 && (at == 0 || !isPartOfName(text, at - 1)) &&
                           !isPartOfName(text, at + word.size());
        if (!found)
            rest += text[at];
        at += found ? word.size() : 1;
    }
    return rest;
}

/// The fields that `front` does not use, in the order of `exceptions`.
std::vector<std::string> exceptionsOf(Front front, const Content& content) {
    std::vector<std::string> fields;
    for (const Exception& exception : exceptions)
        if (exception.front == front && exception.content == content.name)
            fields.emplace_back(exception.field);
    return fields;
}

std::filesystem::path root() { return OMBREL_SOURCE_ROOT; }

std::vector<std::string> fieldsOf(const Content& content) {
    return fieldsOf(content.name, textOf(root() / content.header));
}

/// The sources that must show a content.
std::string sourcesOf(const Content& content, Front front) {
    std::string text;
    for (const std::string& stem : content.shownBy(front))
        for (const char* extension : {".h", ".cpp", ".mm"})
            text += textOf(root() / folderOf(front) / (stem + extension));
    return withoutComments(text);
}

std::set<std::string> stemsIn(Front front) {
    std::set<std::string> stems;
    for (const auto& entry : std::filesystem::directory_iterator(root() / folderOf(front)))
        if (const auto extension = entry.path().extension();
            extension == ".h" || extension == ".cpp" || extension == ".mm")
            stems.insert(entry.path().stem());
    return stems;
}

std::string appkitNameOf(const std::string& stem) {
    if (const auto other = otherNames.find(stem); other != otherNames.end())
        return other->second;
    return stem.starts_with("Qt") ? "AppKit" + stem.substr(2) : stem;
}

std::string entryOf(Front front) {
    return withoutComments(
        textOf(root() / folderOf(front) / (front == Front::qt ? "ShellEntry.cpp" : "ShellEntry.mm")));
}

std::ptrdiff_t occurrences(const std::string& text, std::string_view what) {
    std::ptrdiff_t count = 0;
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
        ++count;
    return count;
}

/// How a front end creates the services of its event loop, read from the headers that declare them.
std::set<std::string> servicesOf(Front front) {
    const bool qt = front == Front::qt;
    const std::regex offer(qt ? "class (\\w+) : public (?:MainQueue|PreferencesStore|Workspace|WindowList)\\b"
                              : "std::shared_ptr<(?:const )?\\w+> (make\\w+)\\(\\)");
    std::set<std::string> services;
    for (const auto& file : std::filesystem::directory_iterator(root() / (qt ? folderOf(front) : "platform/apple"))) {
        const std::string text = file.path().extension() == ".h" ? withoutComments(textOf(file.path())) : "";
        for (std::sregex_iterator found(text.begin(), text.end(), offer), end; found != end; ++found)
            services.insert(qt ? "make_shared<" + (*found)[1].str() + ">(" : (*found)[1].str() + "()");
    }
    return services;
}

} // namespace

TEST(Shells, TheFieldsOfAContentAreFound) {
    const std::string header = R"(
        struct Other { int other; };
        struct Sample {
            enum class Kind { first, second };
            Kind kind = Kind::first; ///< with; a comment
            std::string text = "a; b {c}";
            std::array<std::string, 2> labels{"one", "two"};
            Other inner{1};
            std::optional<Other> maybe;
            bool operator==(const Sample&) const = default;
        };)";
    EXPECT_EQ(fieldsOf("Other", header), std::vector<std::string>{"other"});
    EXPECT_EQ(fieldsOf("Sample", header), (std::vector<std::string>{"kind", "text", "labels", "inner", "maybe"}));
    EXPECT_TRUE(fieldsOf("Missing", header).empty());
}

TEST(Shells, AFieldIsUsedByItsWholeNameOnly) {
    EXPECT_TRUE(uses("show(content.title);", "title"));
    EXPECT_TRUE(uses("show(content->title)", "title"));
    EXPECT_TRUE(uses("show(&Content::title)", "title"));
    EXPECT_FALSE(uses("show(content.titleLabel);", "title"));
    EXPECT_FALSE(uses("show(title);", "title"));
    EXPECT_FALSE(uses(withoutComments("// content.title\n"), "title"));
}

TEST(Shells, EveryContentIsInTheTable) {
    for (const std::string header : {"app/StatusItemContent.h", "app/PopoverContent.h", "app/ContextMenu.h",
                                     "cleanup/window/CleanupWindowContent.h"}) {
        const std::string text = withoutComments(textOf(root() / header));
        const std::regex declaration("struct (\\w+Content) \\{");
        for (std::sregex_iterator found(text.begin(), text.end(), declaration), end; found != end; ++found)
            EXPECT_TRUE(std::ranges::any_of(contents, [&](const Content& content) {
                return content.name == (*found)[1].str() && content.header == header;
            })) << (*found)[1];
    }
    for (const Content& content : contents)
        EXPECT_FALSE(fieldsOf(content).empty()) << content.name;
}

TEST(Shells, AFieldThatIsNotUsedIsReported) {
    const std::vector<std::string> fields{"title", "titleColor", "symbol"};
    const struct {
        std::string source;
        std::vector<std::string> unused;
    } cases[] = {
        {"show(c.title, c.titleColor); draw(c->symbol);", {}},
        {"show(c.titleColor); draw(c->symbol);", {"title"}},
        {"show(c.title); draw(c->symbol);", {"titleColor"}},
        {"show(c.title, c.titleColor); draw(symbol);", {"symbol"}},
        {"", fields},
    };
    for (const auto& [source, unused] : cases)
        EXPECT_EQ(unusedFields(fields, source), unused) << source;
}

TEST(Shells, EachShowsEveryFieldOfEveryContent) {
    for (const Front front : fronts)
        for (const Content& content : contents)
            EXPECT_EQ(unusedFields(fieldsOf(content), sourcesOf(content, front)), exceptionsOf(front, content))
                << folderOf(front) << ": the fields of " << content.name << " that are not used, and the exceptions";
}

// Removing the name does not depend on `uses()`, so this tests `uses()` on the real sources.
TEST(Shells, RemovingAFieldFromTheRealSourcesReportsThatFieldOnly) {
    for (const Front front : fronts)
        for (const Content& content : contents) {
            const std::string source = sourcesOf(content, front);
            const auto fields = fieldsOf(content);
            const auto exceptional = exceptionsOf(front, content);
            for (const std::string& field : fields) {
                std::vector<std::string> expected;
                std::ranges::copy_if(fields, std::back_inserter(expected), [&](const std::string& other) {
                    return other == field || std::ranges::count(exceptional, other) > 0;
                });
                EXPECT_EQ(unusedFields(fields, withoutWord(source, field)), expected)
                    << folderOf(front) << ": " << content.name << "::" << field;
            }
        }
}

// The compiler checks the other arguments.
TEST(Shells, EachCreatesEveryServiceOfItsSystemOnce) {
    for (const Front front : fronts) {
        const std::string entry = entryOf(front);
        EXPECT_EQ(occurrences(entry, "makeAppServices("), 1) << folderOf(front);
        const auto services = servicesOf(front);
        EXPECT_EQ(services.size(), 4U) << "of the main queue, the preferences, the workspace and the list of windows";
        for (const std::string& service : services)
            EXPECT_EQ(occurrences(entry, service), 1) << folderOf(front) << ": " << service;
    }
}

TEST(Shells, TheExceptionsNameExistingFields) {
    for (const Exception& exception : exceptions) {
        const auto content = std::ranges::find(contents, exception.content, &Content::name);
        ASSERT_NE(content, contents.end()) << exception.content;
        const auto fields = fieldsOf(*content);
        EXPECT_EQ(std::ranges::count(fields, exception.field), 1) << exception.content << "::" << exception.field;
    }
}

TEST(Shells, EveryFileHasACounterpartInTheOtherFrontEnd) {
    std::set<std::string> expected;
    const auto qt = stemsIn(Front::qt);
    for (const std::string& stem : qt)
        if (!qtOnly.contains(stem))
            expected.insert(appkitNameOf(stem));
    for (const auto& [stem, why] : appkitOnly)
        expected.insert(stem);
    EXPECT_EQ(stemsIn(Front::appkit), expected);
    for (const auto& [stem, why] : qtOnly)
        EXPECT_TRUE(qt.contains(stem)) << stem << " is no file of shell/qt";
    for (const auto& [stem, other] : otherNames)
        EXPECT_TRUE(qt.contains(stem)) << stem << " is no file of shell/qt";
}

} // namespace vantry
