#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/ReportQueue.h"

#include "Tests/Fakes/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <future>
#include <stdexcept>
#include <vector>

namespace Nerix::FileScanners {

namespace {

using State = QueuedEntry::State;
using Turn = ReportQueue::Turn;

/// A queue whose root is a directory with four names. The test decides when which entry has been examined.
class ReportQueueTest : public testing::Test {
protected:
    ReportQueueTest() {
        for (const char* const name : {"0", "1", "2", "3"}) { boost::filesystem::ofstream file(directory.path() / name); }
        begin(queue);
    }

    /// Puts the root into the queue and examines it.
    void begin(ReportQueue& theQueue) {
        ReportQueue::Entries root(1);
        theQueue.begin(root);
        ASSERT_EQ(theQueue.next(), Turn::examineFront);
        theQueue.front().listing = std::make_unique<Listing>(Names(directory.path()));
        theQueue.settle(theQueue.front(), State::examined, none);
    }

    QueuedEntry* take(ReportQueue& theQueue, std::size_t busy = 0) {
        ReportQueue::Entries unused(1);
        return theQueue.take(unused, busy);
    }

    std::vector<QueuedEntry*> takeAll() { return {take(queue), take(queue), take(queue), take(queue)}; }

    void settle(QueuedEntry* entry, State state = State::examined) { queue.settle(*entry, state, none); }

    const Tests::TemporaryDirectory directory;
    StepSizes none;
    ReportQueue queue{1};
};

} // namespace

TEST_F(ReportQueueTest, EntriesAreReportedInTheirOrderWhateverTheOrderOfExamination) {
    std::vector<std::size_t> order{0, 1, 2, 3};
    do {
        ReportQueue theQueue(1);
        begin(theQueue);
        std::vector<QueuedEntry*> entries;
        for (std::size_t index = 0; index != order.size(); ++index) { entries.push_back(take(theQueue)); }
        std::vector<std::size_t> reported;
        for (const std::size_t index : order) {
            theQueue.settle(*entries[index], State::examined, none);
            ReportQueue::Entries finished;
            theQueue.takeFinished(finished, none);
            for (const QueuedEntry& entry : finished) { reported.push_back(entry.parent == nullptr ? 4 : entry.nameIndex); }
        }
        EXPECT_EQ(reported, (std::vector<std::size_t>{0, 1, 2, 3, 4})) << "examined " << testing::PrintToString(order);
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST_F(ReportQueueTest, FullQueueGivesNoEntryUntilTheFrontIsReported) {
    ReportQueue small(1, 1);
    begin(small);
    QueuedEntry* const front = take(small);
    ASSERT_NE(take(small), nullptr) << "one beside the front";
    EXPECT_EQ(take(small), nullptr);
    small.settle(*front, State::examined, none);
    ReportQueue::Entries finished;
    small.takeFinished(finished, none);
    EXPECT_EQ(take(small), nullptr) << "the front has left the queue, but is not reported";
    finished.clear();
    small.takeFinished(finished, none);
    EXPECT_NE(take(small), nullptr);
}

TEST_F(ReportQueueTest, FullQueueGivesTheNamesOfADeferredDirectoryInFront) {
    ReportQueue small(1, 1);
    begin(small);
    const std::vector<QueuedEntry*> entries{take(small), take(small)};
    entries[1]->listing = std::make_unique<Listing>(Names(directory.path()));
    small.settle(*entries[1], State::examined, none); // offers names, too, but comes after the front
    small.settle(*entries[0], State::deferred, none);
    ASSERT_EQ(small.next(), Turn::examineFront);
    entries[0]->listing = std::make_unique<Listing>(Names(directory.path()));
    small.settle(*entries[0], State::examined, none);
    for (int name = 0; name != 4; ++name) {
        QueuedEntry* const entry = take(small);
        ASSERT_NE(entry, nullptr) << "name " << name;
        small.settle(*entry, State::examined, none);
        ReportQueue::Entries finished;
        small.takeFinished(finished, none);
    }
}

TEST_F(ReportQueueTest, DeferredEntryIsExaminedByTheReporterOnceItIsInFront) {
    const std::vector<QueuedEntry*> entries = takeAll();
    settle(entries[1], State::deferred);
    settle(entries[0]);
    EXPECT_EQ(queue.next(), Turn::report);
    ReportQueue::Entries finished;
    queue.takeFinished(finished, none);
    EXPECT_EQ(finished.size(), 1U);
    EXPECT_EQ(queue.next(), Turn::examineFront);
    EXPECT_EQ(&queue.front(), entries[1]);
    EXPECT_FALSE(entries[1]->isAhead);
}

TEST_F(ReportQueueTest, DirectoryIsDeferredIfTooManyNamesHaveBeenReadAhead) {
    ReportQueue small(1, ReportQueue::maxEntriesAhead, 8); // two directories of four names
    begin(small);
    const std::vector<QueuedEntry*> entries{take(small), take(small), take(small)};
    for (QueuedEntry* const entry : entries) {
        entry->listing = std::make_unique<Listing>(Names(directory.path()));
        small.settle(*entry, State::examined, none);
    }
    EXPECT_EQ(entries[1]->state, State::examined);
    EXPECT_EQ(entries[2]->state, State::deferred);
    EXPECT_EQ(entries[2]->listing, nullptr);
}

TEST_F(ReportQueueTest, DeferredEntryKeepsNothingOfItsExamination) {
    QueuedEntry* const entry = take(queue);
    entry->facts = std::make_unique<EntryFacts>();
    entry->readError = EIO;
    entry->failure = std::make_exception_ptr(std::runtime_error("no memory"));
    StepSizes steps;
    steps.add(4096);
    queue.settle(*entry, State::deferred, steps);
    EXPECT_EQ(entry->facts, nullptr);
    EXPECT_EQ(entry->readError, 0);
    EXPECT_EQ(entry->failure, nullptr);
    EXPECT_TRUE(entry->deliveredSteps.isEmpty());
}

TEST_F(ReportQueueTest, WaitingThreadGetsTheNamesOfADirectoryThatWasExamined) {
    const std::vector<QueuedEntry*> entries = takeAll();
    auto waiting = std::async(std::launch::async, [this] {
        ReportQueue::Entries unused(1);
        return queue.takeOrWait(unused);
    });
    entries[2]->listing = std::make_unique<Listing>(Names(directory.path()));
    settle(entries[2]);
    EXPECT_EQ(waiting.get()->parent, entries[2]);
}

} // namespace Nerix::FileScanners
