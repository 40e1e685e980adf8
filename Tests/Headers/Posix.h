// Put in front of the core and the session to see that POSIX is enough for them: the compiler's own
// _GNU_SOURCE is taken back, so that the system's headers show what POSIX.1-2008 has.
#pragma once

#include <netinet/tcp.h>
#include <pthread.h>
#include <sys/socket.h>
#include <time.h>

#ifdef _GNU_SOURCE
#error "The system's own extensions are in sight."
#endif

// These the headers show all the same.
#undef SOCK_CLOEXEC
#undef SOCK_NONBLOCK
#undef TCP_USER_TIMEOUT
#pragma GCC poison SOCK_CLOEXEC SOCK_NONBLOCK TCP_USER_TIMEOUT

// What the standard library itself needs beyond POSIX.
extern "C" {
int pthread_cond_clockwait(pthread_cond_t*, pthread_mutex_t*, clockid_t, const timespec*);
int pthread_mutex_clocklock(pthread_mutex_t*, clockid_t, const timespec*);
int pthread_rwlock_clockrdlock(pthread_rwlock_t*, clockid_t, const timespec*);
int pthread_rwlock_clockwrlock(pthread_rwlock_t*, clockid_t, const timespec*);
long syscall(long, ...) noexcept;
}
