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

TEST(JSONThreadsTest, CopiesAreChangedAtOnceAndPartsReadWhileTheWholeIsDropped) {
    for (JSON& document : documents()) {
        const JSON before = document.detached();
        std::vector<JSON> copies(threadCount, document);
        document = JSON();  // so that one of the threads drops what all share
        onThreads([&](int number) {
            JSON copy = std::move(copies[static_cast<std::size_t>(number)]);
            JSON part = copy["list"][number];
            auto place = copy["list"].begin();
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
            copy = JSON();
            std::int64_t sum = 0;
            for (; place != JSON::const_iterator(); ++place)
                sum += place->value["id"].intValue() + place->value["number"].boolValue();
            ASSERT_EQ(sum, 100 * 99 / 2 + 100);
            part["copy"] = part["name"];
            ASSERT_EQ(part["copy"].stringValue(), "a name of more than fourteen");
            ASSERT_EQ(part["id"].intValue(), number);
        });
        EXPECT_EQ(before["list"].count(), 100u);
        EXPECT_EQ(before["settings"].count(), 1u);
    }
}

}  // namespace
}  // namespace InkoraKit
