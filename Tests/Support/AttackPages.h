#pragma once

// The pages of Tests/AttackPages, and what a browser must do with them.

#include <string>
#include <vector>

#include "Tests/Support/RawServer.h"

struct AttackPage {
  /// "/NAME.html", or "/NAME.http" for one that need not be a page.
  std::string path;
  /// What is handed to other applications.
  std::vector<std::string> opened;
  /// What one sees then, in the words of the table.
  std::string shown;
};

/// The table of their README, in its order.
std::vector<AttackPage> attackPages();

/// Serves the directory.
RawServer::Reply serveAttackPages(const std::string& request);
