#pragma once

#include <sys/resource.h>

#include <csignal>

namespace orve::test {

// While it lives, a file of this process cannot grow past `bytes`: its
// writes fail as on a full disk (EFBIG), with no root rights and nothing
// mounted. Files already open keep what they hold.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        // The signal would end the process; the write's error is what is tested.
        ::signal(SIGXFSZ, SIG_IGN);
        const struct rlimit limit { bytes, m_before.rlim_max };
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &m_before); }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    struct rlimit m_before {};
};

}  // namespace orve::test
