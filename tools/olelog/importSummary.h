#pragma once

#include "LogFile.h"
#include "ole/interchange/ALE.h"

#include <string>
#include <vector>

/// What became of a log, in one line: rows taken, lines and columns not taken and why.
std::string summaryOf(const LogHead& head, const ALE::Report& report,
                      const std::vector<std::string>& dropped, const std::string& whyDropped);
