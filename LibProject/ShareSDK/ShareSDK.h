// ShareSDK.h: the thread and log service.
//
// A library of its own (target sharesdk), so that a device maker can link another implementation of this header. Every
// operation may be called from any thread. Handles are small numbers from a table, never addresses, and are not reused
// before the table has gone round.
#pragma once

/// Creates a thread that runs `function(argument)` once.
/// @param function   what it runs
/// @param argument   handed to `function`, not looked at; must live as long as it is used there
/// @param suspended  true: it does not start until SHARESDK_ResumeThread; false: it starts at once
/// @param file       where it is created, for the log
/// @param line       likewise
/// @param name       the thread's name; the kernel keeps its first 15 bytes
/// @return a handle, to be given back with SHARESDK_DestroyThread; 0 when no thread could be created
unsigned int SHARESDK_CreateRunOneThread(void (*function)(void*), void* argument, bool suspended, const char* file,
                                         int line, const char* name);

/// The id of a thread.
/// @param handle  of SHARESDK_CreateRunOneThread
/// @return the id that the same thread sees from CPFHelper::GetThreadID, known before a suspended thread is resumed;
/// 0 for an unknown handle
unsigned int SHARESDK_GetThreadID(unsigned int handle);

/// Lets a suspended thread run; does nothing for one that runs.
/// @param handle  of SHARESDK_CreateRunOneThread
/// @return false for an unknown handle
bool SHARESDK_ResumeThread(unsigned int handle);

/// Waits for the thread's end and frees the handle. A thread that was never resumed ends without running its function.
/// A thread that destroys itself is detached instead of joined, and the call returns at once.
/// Of two calls with one handle, one waits and the other returns false. When threads destroy each other, the call that
/// would close the circle detaches its thread and returns at once.
/// @param handle  of SHARESDK_CreateRunOneThread
/// @param file    where it is destroyed, for the log
/// @param line    likewise
/// @return false for an unknown handle
bool SHARESDK_DestroyThread(unsigned int handle, const char* file, int line);

/// For threads that do many short tasks, called by the thread itself: when woken it waits for its turn instead of
/// interrupting a running thread (SCHED_BATCH), so that several tasks are done at one go, and threads that are late, as
/// those that send streams, come first.
void SHARESDK_LetOthersFinish();

/// Writes a log line: date, time, kernel thread id, kind, place, text. Control characters become blanks, so that a line
/// stays one line.
/// @param text  what to write; borrowed for the call
/// @param file  the place in the source
/// @param line  likewise
void SHARESDK_NormalOutput(const char* text, const char* file, unsigned int line);

/// Writes an error line. "ASSERT" stands for a broken precondition: the code behind the call goes on.
/// @param text  what to write; borrowed for the call
/// @param file  the place in the source
/// @param line  likewise
void SHARESDK_AbnormalOutput(const char* text, const char* file, unsigned int line);

/// Log lines go to standard error (the state at the start).
void SHARESDK_LogToConsole();

/// Log lines go to a file that is rotated.
/// @param path      the file; older ones stand beside it
/// @param maxBytes  size at which a new file begins, above 0
/// @param maxFiles  older files kept
/// @return false, with the log as it was, when the file cannot be opened
bool SHARESDK_LogToFile(const char* path, unsigned int maxBytes, unsigned int maxFiles);

/// Log lines go to syslog.
/// @param ident  the name in front of each line; copied
void SHARESDK_LogToSyslog(const char* ident);

/// Least severe kind of line that is written.
enum SHARESDK_LOG_LEVEL
{
    SHARESDK_LOG_ALL = 0,      ///< normal and abnormal lines
    SHARESDK_LOG_ABNORMAL = 1, ///< abnormal lines only
    SHARESDK_LOG_NONE = 2,     ///< nothing
};
/// Chooses which lines are written.
/// @param level  least severe kind of line; SHARESDK_LOG_ALL at the start
void SHARESDK_SetLogLevel(SHARESDK_LOG_LEVEL level);
