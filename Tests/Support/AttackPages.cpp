#include "Tests/Support/AttackPages.h"

#include <fstream>
#include <regex>
#include <sstream>

namespace {

std::ifstream open(const std::string& path) {
  return std::ifstream(ZLV_ATTACK_PAGES + path, std::ios::binary);
}

}  // namespace

std::vector<AttackPage> attackPages() {
  // | `path` | what it tries | `opened` | shown |
  const std::regex row(R"(\| `(\S+)` \|[^|]*\| `?([^|`]*)`? ?\| (.*) \|)");
  std::vector<AttackPage> pages;
  auto readme = open("/README.md");
  std::smatch cells;
  for (std::string line; std::getline(readme, line);) {
    if (!std::regex_match(line, cells, row)) continue;
    pages.push_back({.path = "/" + cells.str(1), .opened = {}, .shown = cells.str(3)});
    if (cells.length(2) > 0) pages.back().opened.push_back(cells.str(2));
  }
  return pages;
}

RawServer::Reply serveAttackPages(const std::string& request) {
  const auto start = request.find('/');
  const auto path = request.substr(start, request.find_first_of(" ?", start) - start);
  std::stringstream content;
  content << open(path).rdbuf();
  if (path.ends_with(".http")) return {content.str()};
  const std::string type = path.ends_with(".js") ? "javascript" : "html";
  return {RawServer::response(content.str(), "200 OK",
                              "Content-Type: text/" + type + "; charset=utf-8\r\n")};
}
