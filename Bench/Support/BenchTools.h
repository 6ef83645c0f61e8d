// BenchTools.h: clocks, process figures and results, as all benchmark programs use them. Any thread.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

/// Nanoseconds of the monotonic clock.
std::uint64_t NowNs();

/// Sleeps until the monotonic clock shows `ns`.
void SleepUntilNs(std::uint64_t ns);

/// CPU time that the threads of a process have used, in microseconds (not those that have ended); 0 when there is no
/// such process.
std::uint64_t CpuOfProcessUs(pid_t pid);

/// CPU time that this process has used, in microseconds.
std::uint64_t OwnCpuUs();

/// Memory that a process holds, in kB; 0 when there is no such process.
std::uint64_t ResidentKb(pid_t pid);

/// Lets this process open as many descriptors as it may.
void RaiseDescriptorLimit();

/// The value below which `part` (0 to 1) of the values lie; 0 when there are none. Sorts them.
double Percentile(std::vector<double>& values, double part);

/// Prints one figure: name, tab, value.
void PrintFigure(const char* name, double value);

/// Ends the program with a message when a call of the benchmark's own fails.
void Require(bool condition, const char* what);
