#include <InkoraKit/JSON.h>

#include <gtest/gtest.h>

#include <functional>
#include <latch>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace InkoraKit {
namespace {

constexpr int threadCount = 4;

/// Lets as many threads as there are start at once, and waits for them to end.
void onThreads(const std::function<void(int)>& action) {
    std::latch start(threadCount);
    std::vector<std::jthread> threads;
    for (int number = 0; number < threadCount; ++number)
        threads.emplace_back([&action, &start, number] {
            start.arrive_and_wait();
            action(number);
        });
}

std::string documentText() {
    std::string text = R"({"list":[)";
    for (int i = 0; i < 100; ++i)
        text += (i > 0 ? "," : "") + std::string(R"({"name":"a name of more than fourteen",)") +
                R"("number":12345678901234567890123,"on":[[]],"id":)" + std::to_string(i) + "}";
    return text + R"(],"settings":{"a":{"b":[1,2,3]}}})";
}

/// A document as it was read, one that has been changed, one that was never read, and one whose
/// parts are converted when the first thread asks for them.
std::vector<JSON> documents() {
    std::vector<JSON> result(3, JSON::parse(documentText()));
    result.emplace_back(Dictionary{{"list", result[0]["list"].arrayValue()},
                                   {"settings", Data::fromText(R"({"a":{"b":[1,2,3]}})")}});
    result[1]["settings"]["a"]["b"][0] = "a text of more than fourteen";
    result[1]["list"][7]["new"] = JSON{{"k", JSON::arrayOf(JSON())}};
    result[2] = result[2].detached();
    return result;
}

TEST(JSONThreadsTest, CopiesAreChangedAtOnce) {
    for (JSON& document : documents()) {
        const JSON before = document.detached();
        std::vector<JSON> copies(threadCount, document);
        document = JSON();  // so that one of the threads drops what all share
        onThreads([&](int number) {
            JSON copy = std::move(copies[static_cast<std::size_t>(number)]);
            JSON empty = JSON::arrayOf();  // of which all threads have the same
            empty.merge(JSON::arrayOf(number));
            for (int round = 0; round < 20; ++round) {
                const JSON kept = copy;
                const int index = (round * threadCount + number) % 100;
                copy["list"][index]["id"] = round;
                copy["settings"]["a"]["b"][1] = copy["list"][index];
                copy["list"][index]["on"][0].merge(JSON::arrayOf(number, kept["settings"]));
                copy["settings"][std::to_string(round)] = kept["list"][round]["name"];
                ASSERT_FALSE(copy == kept);
                ASSERT_EQ(copy["list"][index]["on"][0].count() % 2, 0u);
            }
            ASSERT_EQ(copy["settings"].count(), 21u);
        });
        EXPECT_EQ(before["list"].count(), 100u);
        EXPECT_EQ(before["settings"].count(), 1u);
    }
}

TEST(JSONThreadsTest, PartsAreReadElsewhereWhileTheWholeIsDropped) {
    for (JSON& document : documents()) {
        std::vector<std::pair<JSON, JSON::const_iterator>> parts;
        for (int number = 0; number < threadCount; ++number)
            parts.emplace_back(document["list"][number], document["list"].begin());
        onThreads([&](int number) {
            if (number == 0) document = JSON();
            auto [part, place] =
                std::exchange(parts[static_cast<std::size_t>(number)], {JSON(), {}});
            std::int64_t sum = 0;
            for (; place != JSON::const_iterator(); ++place) {
                const JSON value = place->value;
                sum += value["id"].intValue() + value["number"].numberValue().boolValue();
                part["copy"] = value["name"];
            }
            ASSERT_EQ(sum, 100 * 99 / 2 + 100);
            ASSERT_EQ(part["copy"].stringValue(), "a name of more than fourteen");
            ASSERT_EQ(part["id"].intValue(), number);
        });
    }
}

}  // namespace
}  // namespace InkoraKit
