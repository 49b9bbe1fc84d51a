#include "cleanup/measuring/PropertyListReader.h"

#include "platform/PropertyList.h"
#include "platform/Sandbox.h"
#include "tests/cleanup/measuring/WorkerHostFixture.h"
#include "tests/support/BinaryPropertyList.h"
#include "tests/support/BoundSocket.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/RecordedPolls.h"
#include "tests/support/TestSystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <fcntl.h>
#include <fstream>
#include <map>
#include <optional>
#include <poll.h>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace vantry {

namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

using Texts = std::map<std::string, std::string>;
using Files = std::vector<fs::path>;

const std::vector<std::string> nameOnly{"Name"};
/// How long ending a worker may take, with rounding.
constexpr std::chrono::milliseconds ending = 2 * 120ms + 10ms;

std::string xmlList(const std::string& name) {
    return "<plist><dict><key>Name</key><string>" + name + "</string></dict></plist>";
}

std::string binaryList(const std::string& name) {
    BinaryPropertyList list;
    list.add({});
    const auto key = list.addAscii("Name");
    const auto value = list.addAscii(name);
    list.objects[0] = list.dictionary({key, value});
    return list.bytes();
}

/// A relative path of `length` bytes and a little more.
std::string repeatedFolder(std::size_t length) {
    std::string path = "x";
    while (path.size() < length)
        path += "/x";
    return path;
}

bool isSanitized() {
    return inChildProcess([] { return std::string(limitMemory(64 << 20) ? "no" : "yes"); }) == "yes";
}

bool mayChangeFilesAnyway() {
    return inChildProcess([] { return std::string(giveUpChangingFiles() ? "no" : "yes"); }) == "yes";
}

std::optional<Texts> named(const std::string& name) { return Texts{{"Name", name}}; }

class PropertyListHost : public WorkerHostFixture {
protected:
    using WorkerHostFixture::WorkerHostFixture;

    /// Asks again when a worker was late, on a machine that is busy.
    [[nodiscard]] PropertyListTexts read(const Files& files) {
        return completeAnswer([&] { return host.propertyListTexts(files, nameOnly, farAway()); });
    }
};

/// Ombrel's own workers.
class PropertyListReader : public PropertyListHost {
protected:
    PropertyListReader() : PropertyListHost(OMBREL_EXECUTABLE) {}

    /// Reads `file` together with a good one and expects only the good one.
    void expectNothing(const fs::path& file) {
        writeFile(root / "good", xmlList("good"));
        EXPECT_EQ(read({file, root / "good"}),
                  (PropertyListTexts{.texts = {std::nullopt, named("good")}, .complete = true}))
            << file;
    }
};

/// A program in the place of Ombrel's executable.
class PropertyListReaderWithADouble : public PropertyListHost {
protected:
    PropertyListReaderWithADouble() : PropertyListHost(OMBREL_PROPERTY_LIST_WORKER_DOUBLE) {}

    [[nodiscard]] Files files(std::initializer_list<const char*> behaviours) const {
        Files files;
        for (const char* behaviour : behaviours)
            files.push_back(root / behaviour);
        return files;
    }
    [[nodiscard]] std::vector<std::string> starts() const {
        std::ifstream stream(root / "started");
        std::vector<std::string> starts;
        for (std::string line; std::getline(stream, line);)
            starts.push_back(line);
        return starts;
    }
    void forgetStarts() const { fs::remove(root / "started"); }
};

class PropertyListReaderWithoutWorkers : public PropertyListHost {
protected:
    PropertyListReaderWithoutWorkers() : PropertyListHost("/nowhere/ombrel") {}
};

} // namespace

TEST_F(PropertyListReader, ReadsListsOfBothFormatsInTheOrderOfTheQuestion) {
    writeFile(root / "xml", xmlList("Größe 😀"));
    writeFile(root / "binary", binaryList("com.example.App"));
    writeFile(root / "empty", "<plist><dict/></plist>");
    writeFile(root / "broken", "<plist>");
    const auto answer =
        read({root / "binary", root / "missing", root / "xml", root / "empty", root / "xml", root / "broken"});
    EXPECT_EQ(answer, (PropertyListTexts{.texts = {named("com.example.App"), std::nullopt, named("Größe 😀"), Texts{},
                                                   named("Größe 😀"), std::nullopt},
                                         .complete = true}));
    EXPECT_EQ(host.propertyListTexts(Files(), nameOnly, farAway()), (PropertyListTexts{.texts = {}, .complete = true}));
    const auto noKeys = completeAnswer([&] { return host.propertyListTexts(Files{root / "xml"}, {}, farAway()); });
    EXPECT_EQ(noKeys, (PropertyListTexts{.texts = {Texts{}}, .complete = true}));
}

TEST_F(PropertyListReader, TakesAnyKeys) {
    writeFile(root / "list", "<plist><dict><key>1</key><string>a</string><key>--x y\n</key><string>b</string>"
                             "<key>é</key><string>c</string></dict></plist>");
    const std::vector<std::string> odd{"1", "--x y\n", "é", "", "missing", "\xff", "1"};
    const auto answer = completeAnswer([&] { return host.propertyListTexts(Files{root / "list"}, odd, farAway()); });
    EXPECT_EQ(answer,
              (PropertyListTexts{.texts = {Texts{{"1", "a"}, {"--x y\n", "b"}, {"é", "c"}}}, .complete = true}));
}

TEST_F(PropertyListReader, ReadsFilesOfAnyName) {
    Files files;
    PropertyListTexts expected{.texts = {}, .complete = true};
    for (const std::string& name :
         {"caf\xe9"s, "\xff\xfe"s, "a\nb"s, "--property-list-worker"s, "-"s, " "s, std::string(255, '\xe4')}) {
        files.push_back(root / name);
        writeFile(files.back(), xmlList("x" + std::to_string(files.size())));
        expected.texts.push_back(named("x" + std::to_string(files.size())));
    }
    EXPECT_EQ(read(files), expected);
}

TEST_F(PropertyListReader, ReadsOnlyRegularFiles) {
    writeFile(root / "target", xmlList("a"));
    fs::create_symlink(root / "target", root / "link");
    fs::create_symlink("nowhere", root / "dangling");
    fs::create_symlink("loop", root / "loop");
    fs::create_directory(root / "folder");
    ASSERT_EQ(mkfifo((root / "fifo").c_str(), 0600), 0);
    makeSocket(root / "socket");
    for (const char* name : {"link", "dangling", "loop", "folder", "fifo", "socket", "target/below", "missing/below"})
        expectNothing(root / name);
    for (const auto& file : {fs::path("/dev/null"), fs::path("/dev/zero"), fs::path("/proc/self/cmdline"), fs::path(""),
                             root.path() / std::string("target\0x", 8), root.path() / std::string(300, 'n'),
                             root.path() / repeatedFolder(4096), root.path() / repeatedFolder(200'000)})
        expectNothing(file);
}

TEST_F(PropertyListReader, DoesNotWakeAWriterThatWaitsAtAFifo) {
    const fs::path fifo = root / "fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    std::atomic<bool> isAwake = false;
    std::thread writer([&] {
        const UniqueFd waited(open(fifo.c_str(), O_WRONLY | O_CLOEXEC));
        isAwake = true;
    });
    // The thread waits already or is about to. Either way it must not wake up before the reader below opens the pipe.
    expectNothing(fifo);
    EXPECT_FALSE(isAwake);
    const UniqueFd reader(open(fifo.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    writer.join();
}

TEST_F(PropertyListReader, ReadsFilesUpToTheLargestSize) {
#ifdef OMBREL_THREAD_SANITIZER
    GTEST_SKIP() << "takes longer than a second with this sanitizer";
#endif
    const std::string list = xmlList("a");
    writeFile(root / "largest", list + std::string(largestPropertyList - list.size(), ' '));
    writeFile(root / "larger", list + std::string(largestPropertyList - list.size() + 1, ' '));
    writeFile(root / "sparse", list);
    fs::resize_file(root / "sparse", 1ULL << 40);
    writeFile(root / "none", "");
    EXPECT_EQ(read({root / "larger", root / "largest", root / "sparse", root / "none"}),
              (PropertyListTexts{.texts = {std::nullopt, named("a"), std::nullopt, std::nullopt}, .complete = true}));
}

TEST_F(PropertyListReader, ReadsMoreFilesThanOneWorkerTakes) {
    const fs::path folder = root / std::string(200, 'f');
    fs::create_directory(folder);
    Files files;
    PropertyListTexts expected{.texts = {}, .complete = true};
    for (int i = 0; i < 1200; ++i) {
        const std::string name = std::to_string(i);
        files.push_back((i % 2 == 0 ? folder : root.path()) / name);
        if (i % 3 != 0)
            writeFile(files.back(), i % 3 == 1 ? xmlList(name) : binaryList(name));
        expected.texts.push_back(i % 3 != 0 ? named(name) : std::nullopt);
    }
    EXPECT_EQ(read(files), expected);
}

TEST_F(PropertyListReader, FindsNothingInUnreadableFiles) {
    const fs::path copy = root / "worker";
    fs::copy_file(OMBREL_EXECUTABLE, copy);
    fs::permissions(root.path(), fs::perms::all);
    writeFile(root / "good", xmlList("good"));
    fs::permissions(root / "good", fs::perms::owner_read | fs::perms::others_read);
    writeFile(root / "secret", xmlList("secret"));
    fs::permissions(root / "secret", fs::perms::owner_read);
    fs::create_directory(root / "closed");
    writeFile(root / "closed/list", xmlList("secret"));
    fs::permissions(root / "closed", fs::perms::owner_all);
    const std::string said = inChildProcess([&]() -> std::string {
        if (!becomeUser(unknownUser()))
            return "no other user";
        WorkerHost other({copy, temporary});
        const auto answer = completeAnswer([&] {
            return other.propertyListTexts(Files{root / "secret", root / "closed/list", root / "good"}, nameOnly,
                                           farAway());
        });
        const PropertyListTexts expected{.texts = {std::nullopt, std::nullopt, named("good")}, .complete = true};
        return answer == expected ? "as expected" : "something else";
    });
    EXPECT_EQ(said, "as expected");
}

TEST_F(PropertyListReader, ItsWorkerHasLittleMemoryAndNoRightToWrite) {
    writeFile(root / "list", xmlList(std::string(60'000, 'a')));
    std::vector<std::string> arguments{"--property-list-worker", "1", "Name"};
    arguments.insert(arguments.end(), 20, (root / "list").native());
    auto worker = ChildProcess::start(OMBREL_EXECUTABLE, arguments, ChildOutput::pipe);
    ASSERT_TRUE(worker);
    // The worker has written more than a pipe holds and waits.
    pollfd event{worker->output(), POLLIN, 0};
    ASSERT_EQ(poll(&event, 1, 30'000), 1);
    std::ifstream children("/proc/self/task/" + std::to_string(getpid()) + "/children");
    std::string process;
    children >> process;
    const std::string limits = readFile("/proc/" + process + "/limits");
    const std::string status = readFile("/proc/" + process + "/status");
    const auto ended = endOf(*worker);
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(std::ranges::count(ended.output, '\n'), 20);
    const auto limitOf = [&](const std::string& name) {
        const auto at = limits.find(name);
        std::string limit;
        if (at != std::string::npos)
            std::istringstream(limits.substr(at + name.size())) >> limit;
        return limit;
    };
    EXPECT_EQ(limitOf("Max core file size"), "0");
    if (const std::string space = limitOf("Max address space"); space != "unlimited") {
        EXPECT_GT(std::stoull(space), 64ULL << 20);
        EXPECT_LT(std::stoull(space), 256ULL << 20); // including libraries
    } else {
        EXPECT_TRUE(isSanitized()) << limits;
    }
    if (!mayChangeFilesAnyway()) {
        EXPECT_NE(status.find("NoNewPrivs:\t1"), std::string::npos) << status;
    }
}

TEST_F(PropertyListReader, SurvivesHostileFiles) {
    BinaryPropertyList bomb;
    bomb.add({});
    std::size_t inner = bomb.add("\x09");
    for (int level = 0; level < 60; ++level)
        inner = bomb.add(bomb.array(std::vector<std::size_t>(14, inner)));
    const auto key = bomb.addAscii("Name");
    bomb.objects[0] = bomb.dictionary({key, inner});
    writeFile(root / "bomb", bomb.bytes());
    std::string deep = "<plist><dict><key>Name</key>";
    while (deep.size() < largestPropertyList - 7)
        deep += "<array>";
    writeFile(root / "deep", deep);
    std::string noise(largestPropertyList, '\0');
    for (std::size_t i = 0; i < noise.size(); ++i)
        noise[i] = static_cast<char>(i * 2'654'435'761U >> 13);
    writeFile(root / "noise", noise);
    writeFile(root / "binary-noise", "bplist00" + noise.substr(8));
    for (const char* name : {"noise", "binary-noise"})
        expectNothing(root / name);
    // These may cost a worker, but never the answers for other files.
    writeFile(root / "good", xmlList("a"));
    for (const char* name : {"bomb", "deep"}) {
        const auto answer =
            host.propertyListTexts(Files{root / "good", root / name, root / "good"}, nameOnly, farAway());
        EXPECT_THAT(answer.texts, testing::ElementsAre(named("a"), std::nullopt, named("a"))) << name;
        EXPECT_FALSE(hasChildren()) << name;
    }
}

TEST_F(PropertyListReader, WritesNothingWhenItsArgumentsAreWrong) {
    writeFile(root / "list", xmlList("a"));
    const EndedChild silent{.status = 0, .output = ""};
    // Which arguments are wrong is tested in WorkerArgumentsTest.cpp.
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{}, {"-1"}, {"2", "Name"}, {"3", "Name", root / "list"}}) {
        std::vector<std::string> all{"--property-list-worker"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        EXPECT_EQ(endOf(OMBREL_EXECUTABLE, all), silent) << testing::PrintToString(arguments);
    }
    EXPECT_EQ(endOf(OMBREL_EXECUTABLE, {"--property-list-worker", "1", "Name", root / "list", root / "none"}),
              (EndedChild{.status = 0, .output = "{\"Name\":\"a\"}\nnull\n"}));
}

TEST_F(PropertyListReaderWithADouble, AcceptsWellFormedAnswers) {
    EXPECT_EQ(
        read(files({"answers", "is-no-list", "answers-bit-by-bit", "answers-at-length", "answers"})),
        (PropertyListTexts{.texts = {named("a"), std::nullopt, named("b"), named("c"), named("a")}, .complete = true}));
    forgetStarts();
    if (host.propertyListTexts(files({"answers", "is-no-list"}), nameOnly, farAway()).complete) {
        EXPECT_EQ(starts(), std::vector<std::string>{"answers is-no-list "});
    }
}

TEST_F(PropertyListReaderWithADouble, ContinuesAfterAFileWithoutAnAnswer) {
    for (const char* behaviour :
         {"hangs", "hangs-in-its-answer", "ignores-the-request-to-end", "stops-itself", "kills-itself", "ends",
          "ends-in-its-answer", "closes-its-output", "writes-garbage", "writes-an-empty-line", "tells-another-key",
          "writes-a-line-without-end", "writes-lines-without-end"}) {
        const PropertyListTexts expected{.texts = {named("a"), std::nullopt, named("b")}, .complete = false};
        PropertyListTexts answer;
        for (int attempt = 0; attempt < 5 && answer != expected; ++attempt) { // another file's worker may be late
            forgetStarts();
            RecordedPolls::forget();
            answer = host.propertyListTexts(files({"answers", behaviour, "answers-bit-by-bit"}), nameOnly, farAway());
        }
        EXPECT_LE(RecordedPolls::waitedInVain(), 1s + 2 * ending) << behaviour;
        EXPECT_EQ(answer, expected) << behaviour;
        EXPECT_EQ(starts(),
                  (std::vector<std::string>{"answers "s + behaviour + " answers-bit-by-bit ", "answers-bit-by-bit "}))
            << behaviour;
        EXPECT_FALSE(hasChildren()) << behaviour;
    }
}

TEST_F(PropertyListReaderWithADouble, IsNotCompleteWhenAWorkerIsKilled) {
    std::thread killer([&] { killNoted(root / "process"); });
    const auto answer = host.propertyListTexts(files({"waits-to-be-killed", "answers"}), nameOnly, farAway());
    killer.join();
    EXPECT_FALSE(answer.complete);
    EXPECT_EQ(answer.texts[0], std::nullopt);
}

TEST_F(PropertyListReaderWithADouble, WaitsOneSecondForAFileButNotBeyondTheDeadline) {
    const auto begin = std::chrono::steady_clock::now();
    RecordedPolls::forget();
    EXPECT_EQ(host.propertyListTexts(files({"hangs"}), nameOnly, farAway()),
              (PropertyListTexts{.texts = {std::nullopt}, .complete = false}));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 1s);
    EXPECT_LE(RecordedPolls::waitedInVain(), 1s + ending);
    forgetStarts();
    RecordedPolls::forget();
    const Files many(100, root / "hangs");
    const auto answer = host.propertyListTexts(many, nameOnly, deadlineIn(1500ms));
    EXPECT_LE(RecordedPolls::waitedInVain(), 1500ms + 2 * ending); // a hundred seconds without the deadline
    EXPECT_FALSE(answer.complete);
    EXPECT_EQ(answer.texts.size(), many.size());
    EXPECT_LE(starts().size(), 2U);
}

TEST_F(PropertyListReaderWithADouble, StartsNoWorkerWhenTimeIsUp) {
    for (const auto deadline : {std::chrono::steady_clock::now(), Deadline::min()})
        EXPECT_EQ(host.propertyListTexts(files({"answers", "answers"}), nameOnly, deadline),
                  (PropertyListTexts{.texts = {std::nullopt, std::nullopt}, .complete = false}));
    EXPECT_EQ(starts(), std::vector<std::string>());
}

TEST_F(PropertyListReaderWithoutWorkers, IsNotComplete) {
    EXPECT_EQ(host.propertyListTexts(Files{root / "a", root / "b"}, nameOnly, farAway()),
              (PropertyListTexts{.texts = {std::nullopt, std::nullopt}, .complete = false}));
}

} // namespace vantry
