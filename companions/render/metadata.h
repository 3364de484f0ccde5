// What a PDF says of itself twice, in its document information and its metadata (XMP), where the engine
// cannot.
#pragma once

#include <picojson.h>

#include <string>

#include "companions/render/pdfmark.h"

namespace companions::render {

// Whether a text has characters that some versions of the engine get wrong: those of three bytes or more in
// UTF-8, the Chinese, Japanese and Korean ones among them.
[[nodiscard]] bool has_hard_texts(const DocumentInfo& info);

// The metadata with the texts in the place of those that stand there; empty texts leave them alone. UTF-8.
[[nodiscard]] std::string with_texts(std::string metadata, const DocumentInfo& info);

// The same for the dictionary of the document information, as qpdf tells of it.
[[nodiscard]] picojson::object with_texts(picojson::object information, const DocumentInfo& info);

}  // namespace companions::render
