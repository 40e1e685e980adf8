#include "Tests/Support/AttackPages.h"

#include <fstream>
#include <iterator>
#include <sstream>

namespace {

std::ifstream open(const std::string& path) {
  return std::ifstream(ZLV_ATTACK_PAGES + path, std::ios::binary);
}

}  // namespace

std::vector<AttackPage> attackPages() {
  std::vector<AttackPage> pages;
  auto readme = open("/README.md");
  for (std::string line; std::getline(readme, line);) {
    if (!line.starts_with("| `")) continue;
    std::erase(line, '`');
    std::istringstream cells(line);
    std::string page;
    std::string attempt;
    std::string opened;
    std::string shown;
    for (std::string* cell : {&page, &page, &attempt, &opened, &shown}) {
      std::getline(cells, *cell, '|');
    }
    std::istringstream urls(opened);
    pages.push_back({.path = "/" + page.substr(1, page.size() - 2),
                     .opened = {std::istream_iterator<std::string>(urls), {}},
                     .shown = shown.substr(1, shown.size() - 2)});
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
