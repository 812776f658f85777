#pragma once

#include <pthread.h>

#include <cstddef>

/// As long as it lives, the system gives no threads.
class NoThreads {
  public:
    NoThreads() {
        pthread_getattr_default_np(&m_before);
        pthread_attr_t greedy;
        pthread_attr_init(&greedy);
        pthread_attr_setstacksize(&greedy, std::size_t(1) << 46);
        pthread_setattr_default_np(&greedy);
        pthread_attr_destroy(&greedy);
    }
    ~NoThreads() {
        pthread_setattr_default_np(&m_before);
        pthread_attr_destroy(&m_before);
    }

  private:
    pthread_attr_t m_before;
};
