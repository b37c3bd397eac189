#include "Views/QtExecutor.h"

#include <gtest/gtest.h>

#include <QtCore/QThread>
#include <QtTest/QTest>
#include <asio/any_io_executor.hpp>
#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/post.hpp>
#include <asio/steady_timer.hpp>
#include <asio/thread_pool.hpp>
#include <asio/use_awaitable.hpp>
#include <memory>
#include <vector>

#include "Platform/Task.h"

namespace orvane {
namespace {

Task<void> hop(asio::any_io_executor executor) {
    co_await asio::post(executor, asio::use_awaitable);
}

/// Holds a timer while it waits, first for the loop and then for the timer.
Task<void> waitForever(asio::any_io_executor executor, std::shared_ptr<int>) {
    asio::steady_timer timer(executor, std::chrono::hours(1));
    co_await hop(executor);
    co_await timer.async_wait(asio::use_awaitable);
}

/// Visits the pool and notes on which threads it ran, before and after.
Task<void> visitPool(asio::any_io_executor pool, std::vector<QThread*>& threads) {
    threads.push_back(QThread::currentThread());
    co_await asio::co_spawn(pool, hop(pool), asio::use_awaitable);
    threads.push_back(QThread::currentThread());
}

TEST(QtExecutor, NeverRunsWorkInsideThePostingCall) {
    QtExecutionContext context;
    bool ran = false;
    asio::post(context.get_executor(), [&] { ran = true; });
    asio::dispatch(context.get_executor(), [&] { ran = true; });
    EXPECT_FALSE(ran);
    QCoreApplication::processEvents();
    EXPECT_TRUE(ran);
}

TEST(QtExecutor, KeepsTheOrderOfPosting) {
    QtExecutionContext context;
    std::vector<int> order;
    for (int i = 0; i < 5; ++i) asio::post(context.get_executor(), [&order, i] { order.push_back(i); });
    QCoreApplication::processEvents();
    EXPECT_EQ(order, (std::vector{0, 1, 2, 3, 4}));
}

TEST(QtExecutor, ResumesACoroutineOnTheLoopsThread) {
    asio::thread_pool pool(2);
    QtExecutionContext context;
    std::vector<QThread*> threads;
    asio::co_spawn(context.get_executor(), visitPool(pool.get_executor(), threads), asio::detached);
    EXPECT_TRUE(QTest::qWaitFor([&] { return threads.size() == 2; }));
    EXPECT_EQ(threads, (std::vector{QThread::currentThread(), QThread::currentThread()}));
    pool.join();
}

TEST(QtExecutor, DeliversTimersToTheLoop) {
    QtExecutionContext context;
    asio::any_io_executor executor = context.get_executor();
    asio::steady_timer timer(executor, std::chrono::milliseconds(1));
    QThread* thread = nullptr;
    timer.async_wait([&](std::error_code) { thread = QThread::currentThread(); });
    EXPECT_TRUE(QTest::qWaitFor([&] { return thread != nullptr; }));
    EXPECT_EQ(thread, QThread::currentThread());
}

TEST(QtExecutor, DropsWhatIsLeftWithoutRunningIt) {
    auto token = std::make_shared<int>();
    bool ran = false;
    {
        QtExecutionContext context;
        asio::post(context.get_executor(), [token, &ran] { ran = true; });
        asio::steady_timer timer(asio::any_io_executor(context.get_executor()), std::chrono::hours(1));
        timer.async_wait([token, &ran](std::error_code) { ran = true; });
    }
    QCoreApplication::processEvents();
    EXPECT_FALSE(ran);
    EXPECT_EQ(token.use_count(), 1);
}

TEST(QtExecutor, DropsCoroutinesWithTheirTimersWhereverTheyWait) {
    for (int turns = 0; turns < 4; ++turns) {
        auto token = std::make_shared<int>();
        {
            QtExecutionContext context;
            asio::co_spawn(context.get_executor(), waitForever(context.get_executor(), token),
                           asio::detached);
            for (int turn = 0; turn < turns; ++turn) QCoreApplication::sendPostedEvents();
        }
        EXPECT_EQ(token.use_count(), 1);
    }
}

TEST(QtExecutor, TakesWorkFromManyThreadsAtOnce) {
    QtExecutionContext context;
    int sum = 0;
    asio::thread_pool pool(4);
    for (int i = 0; i < 1000; ++i)
        asio::post(pool, [&, executor = context.get_executor()] { asio::post(executor, [&] { ++sum; }); });
    pool.join();
    QCoreApplication::processEvents();
    EXPECT_EQ(sum, 1000);
}

}  // namespace
}  // namespace orvane
