#include "thread_start.h"

#include <atomic>

namespace moremate {

namespace {

std::atomic<const TThreadHooks*> g_pThreadHooks{nullptr};

}  // namespace

void SetThreadHooks(const TThreadHooks* hooks) {
    g_pThreadHooks.store(hooks);
}

CThreadHooksScope::CThreadHooksScope() : m_pHooks(g_pThreadHooks.load()) {
    if (m_pHooks) m_pSetup = m_pHooks->onStart();
}

CThreadHooksScope::~CThreadHooksScope() {
    if (m_pHooks) m_pHooks->onEnd(m_pSetup);
}

}  // namespace moremate
