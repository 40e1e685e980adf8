#pragma once

/// The catalogues of the backend's texts.
namespace ZLVTranslations {

/// Binds the text domain to the directory that has them, so that a prefix can be moved as a whole.
void bind();

}  // namespace ZLVTranslations
