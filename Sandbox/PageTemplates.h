#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

/// Fills a template: "{{name}}" becomes the value as text, "{{{name}}}" the value as HTML.
std::string ZLVFillTemplate(
    std::string_view text,
    std::initializer_list<std::pair<std::string_view, std::string_view>> values);

// Style and templates of the sandbox's pages.
namespace ZLVPageTemplates {
extern const std::string_view Page;
extern const std::string_view Form;
extern const std::string_view Fact;
extern const std::string_view Message;
extern const std::string_view Overview;
extern const std::string_view OverviewSection;
extern const std::string_view OverviewRow;
}  // namespace ZLVPageTemplates
