// ThreadAnnotations.h: names for clang's thread safety analysis (-Wthread-safety); nothing for other compilers.
#pragma once

#if defined(__clang__)
#define PF_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define PF_THREAD_ATTRIBUTE(x)
#endif

/// A class whose objects are locks.
#define CAPABILITY(name) PF_THREAD_ATTRIBUTE(capability(name))
/// A class that holds a lock from its constructor to its destructor.
#define SCOPED_CAPABILITY PF_THREAD_ATTRIBUTE(scoped_lockable)
/// Data that is read and written with the lock held only; for pointers, what they point to.
#define GUARDED_BY(lock) PF_THREAD_ATTRIBUTE(guarded_by(lock))
#define PT_GUARDED_BY(lock) PF_THREAD_ATTRIBUTE(pt_guarded_by(lock))
/// Operations that are called with the lock held, or without it.
#define REQUIRES(...) PF_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define EXCLUDES(...) PF_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))
/// Operations that take or give back the lock.
#define ACQUIRE(...) PF_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define RELEASE(...) PF_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define TRY_ACQUIRE(...) PF_THREAD_ATTRIBUTE(try_acquire_capability(__VA_ARGS__))
/// Operations that the analysis cannot follow; the comment beside it says why they are right.
#define NO_THREAD_SAFETY_ANALYSIS PF_THREAD_ATTRIBUTE(no_thread_safety_analysis)
