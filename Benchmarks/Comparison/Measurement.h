#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Benchmarks/Comparison/Contender.h"

using Numbers = std::vector<double>;

/// What `measure` returns, in a process of its own.
Numbers inChild(const std::function<Numbers()>& measure);

/// Takes all threads of this process, which must have no others yet, to the same processor.
void stayOnOneProcessor();

double median(Numbers numbers);
/// The number below which this share of them lies.
double quantile(Numbers numbers, double share);

/// Seconds of processor time that this process has used, or the calling thread.
double processSeconds();
double threadSeconds();
/// Kilobytes of this process that are in memory.
double residentKilobytes();
/// The most that there ever were.
double peakResidentKilobytes();

struct CallCost {
  double seconds;  ///< Wall clock.
  double CPUSeconds;
};

/// Makes so many calls, so many of them at a time, after some that are not measured, and checks
/// each record.
CallCost makeCalls(Contender& contender, const std::string& server, int calls, int inFlight,
                   int before = 0);
/// The same to several servers in turn.
CallCost makeCalls(Contender& contender, const std::vector<std::string>& servers, int calls,
                   int inFlight, int before = 0);
