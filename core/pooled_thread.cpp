#include "pooled_thread.h"

#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

#include "thread_start.h"

namespace moremate {

struct CPooledThread::TTask {
    std::function<void()> run;
    std::mutex mutex;
    std::condition_variable ended;
    bool bEnded = false;
};

namespace {

class CWorkerPool {
  public:
    static CWorkerPool& Instance() {
        static CWorkerPool* const pPool = new CWorkerPool;  // parked workers outlive the statics
        return *pPool;
    }
    void Run(std::shared_ptr<CPooledThread::TTask> pTask) {
        {
            std::lock_guard lock(m_mutex);
            if (!m_parked.empty()) {
                TWorker* pWorker = m_parked.back();
                m_parked.pop_back();
                pWorker->pTask = std::move(pTask);
                pWorker->wake.notify_one();
                return;
            }
        }
        auto* pWorker = new TWorker{std::move(pTask), {}};  // lives as long as its thread
        StartThread([this, pWorker] { Work(*pWorker); }).detach();
    }

  private:
    struct TWorker {
        std::shared_ptr<CPooledThread::TTask> pTask;  // null while parked
        std::condition_variable wake;
    };

    // A worker is parked before its task counts as ended: a thread that waited for the task and
    // hands out the next one finds it waiting.
    void Work(TWorker& worker) {
        for (;;) {
            std::shared_ptr<CPooledThread::TTask> pTask = std::move(worker.pTask);
            pTask->run();
            pTask->run = nullptr;
            {
                std::lock_guard lock(m_mutex);
                m_parked.push_back(&worker);
            }
            {
                std::lock_guard lock(pTask->mutex);
                pTask->bEnded = true;
            }
            pTask->ended.notify_all();
            pTask.reset();
            std::unique_lock lock(m_mutex);
            worker.wake.wait(lock, [&worker] { return worker.pTask != nullptr; });
        }
    }

    std::mutex m_mutex;
    std::vector<TWorker*> m_parked;
};

}  // namespace

CPooledThread::CPooledThread(std::function<void()> task) : m_pTask(std::make_shared<TTask>()) {
    m_pTask->run = std::move(task);
    CWorkerPool::Instance().Run(m_pTask);
}

CPooledThread& CPooledThread::operator=(CPooledThread&& other) {
    if (joinable()) join();
    m_pTask = std::move(other.m_pTask);
    return *this;
}

CPooledThread::~CPooledThread() {
    if (joinable()) join();
}

bool CPooledThread::Ended() const {
    const std::lock_guard lock(m_pTask->mutex);
    return m_pTask->bEnded;
}

void CPooledThread::join() {
    std::unique_lock lock(m_pTask->mutex);
    m_pTask->ended.wait(lock, [this] { return m_pTask->bEnded; });
    lock.unlock();
    m_pTask.reset();
}

}  // namespace moremate
