#pragma once

#include <optional>
#include <string>
#include <vector>

/// A line of the table.
struct Row {
  std::string figure;
  std::string reach;
  std::string measured;
  std::optional<bool> isMet = {};  ///< Nothing where no value is to be reached.
};
using Rows = std::vector<Row>;

/// Where to call, and how often each measurement is taken.
struct Run {
  std::string server;
  std::string neighbour;             ///< A server for clients that stay on one processor with it.
  std::vector<std::string> servers;  ///< As many as take 10,000 calls at once.
  int rounds;
};

/// printf(3) into a text.
[[gnu::format(printf, 1, 2)]] std::string format(const char* text, ...);

// Each group measures in processes of its own.

/// The whole call beside the other contenders.
Rows speedRows(const Run& run);
/// The same calls, more and more at a time.
Rows loadRows(const Run& run);
/// What the host's main thread pays.
Rows mainThreadRows(const Run& run);
Rows memoryRows(const Run& run);
/// From an answer's bytes to its record.
Rows recordRows();
Rows secureRows(const Run& run);
