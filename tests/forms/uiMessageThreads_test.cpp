// Boxes that other threads ask for.
#include "tests/await.h"
#include "tests/forms/messageTest.h"

#include <atomic>
#include <thread>

namespace {

class uiMessageThreadsTest : public messageTest
{
protected:
    // Pumps until the work on another thread has ended.
    template <typename work>
    static void OnWorker(const work& task)
    {
        std::atomic<bool> isDone{false};
        std::thread worker([&] {
            task();
            isDone = true;
        });
        EXPECT_TRUE(await([&isDone] {
            Toolkit().PumpPending();
            return isDone.load();
        }));
        worker.join();
    }
};

TEST_F(uiMessageThreadsTest, AWorkerThatWaitsGetsTheAnswer)
{
    std::vector<Buttons> answers;
    AnswerWith(1);
    OnWorker([&] {
        answers.push_back(uiMessage::Execute(Main, "Title", "Text", {Buttons::Abort, Buttons::Ignore}, true));
    });
    WhileOpen([] { fakeUserCloses(Box()->Handle()); });
    OnWorker([&] { answers.push_back(uiMessage::Execute(Main, "Title", "Text", {}, true)); });
    EXPECT_THAT(answers, testing::ElementsAre(Buttons::Ignore, Buttons::None));
}

TEST_F(uiMessageThreadsTest, AWorkerThatDoesNotWaitGetsNoneAtOnceAndTheBoxStillShows)
{
    std::atomic<Buttons> answer{Buttons::OK};
    std::thread worker([&] {
        answer = uiMessage::Execute(Main, "Title", "Text", {Buttons::Yes, Buttons::No}, false);
    });
    // Nobody pumps, so a worker that waited would never end.
    worker.join();
    EXPECT_EQ(answer.load(), Buttons::None);
    EXPECT_EQ(Toolkit().WindowList().size(), 1U);
    std::vector<std::string> labels;
    WhileOpen([&labels] {
        labels = Labels();
        Click(Row().at(0));
    });
    Toolkit().PumpPending();
    EXPECT_THAT(labels, testing::ElementsAre("Yes", "No"));
    EXPECT_EQ(Toolkit().WindowList().size(), 1U);
}

TEST_F(uiMessageThreadsTest, OnTheInterfaceThreadItAlwaysWaits)
{
    AnswerWith(0);
    EXPECT_EQ(uiMessage::Execute(Main, "Title", "Text", {Buttons::Yes}, false), Buttons::Yes);
}

TEST_F(uiMessageThreadsTest, AnOwnerThatIsGoneBeforeItsBoxComesGetsNone)
{
    new ctrlForm(nullptr, 0);
    std::thread worker([this] { uiMessage::Execute(Main, "Title", "Text", {}, false); });
    worker.join();
    delete Main;
    fakeClearCalls();
    Toolkit().PumpPending();
    EXPECT_EQ(fakeCallCount("windowCreate"), 0U);
}

TEST_F(uiMessageThreadsTest, AnOwnerDestroyedMeanwhileFreesTheWorker)
{
    Buttons answer = Buttons::OK;
    WhileOpen([this] { Main->Destroy(); });
    OnWorker([&] { answer = uiMessage::Execute(Main, "Title", "Text", {Buttons::Yes}, true); });
    EXPECT_EQ(answer, Buttons::None);
    Toolkit().PumpPending();
    EXPECT_FALSE(Toolkit().HasWindows());
}

TEST_F(uiMessageThreadsTest, BoxesOfSeveralWorkersOpenOneAboveTheOther)
{
    constexpr size_t count = 3;
    std::vector<std::thread> workers;
    std::atomic<size_t> answered{0};
    for (size_t i = 0; i < count; ++i) {
        workers.emplace_back([&, i] {
            if (uiMessage::Execute(Main, "Title " + std::to_string(i), "Text", {Buttons::Retry}) ==
                Buttons::Retry)
                ++answered;
        });
    }
    // Each wait of a run is a chance to answer the box on top.
    std::atomic<bool> isDone{false};
    std::function<void()> answerNext = [&] {
        if (Toolkit().WindowList().size() > 1 && !Row().empty() && fakeQueueLength() == 0)
            Click(Row().at(0));
        if (!isDone)
            WhileOpen(answerNext);
    };
    WhileOpen(answerNext);
    EXPECT_TRUE(await([&] {
        Toolkit().PumpPending();
        return answered == count;
    }));
    isDone = true;
    for (std::thread& worker : workers)
        worker.join();
    EXPECT_EQ(Toolkit().WindowList().size(), 1U);
    EXPECT_TRUE(Main->IsEnabled());
}

}  // namespace
