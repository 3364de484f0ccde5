#include "companions/render/pdf_tool.h"

#include <windows.h>

#include <picojson.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "common/qk/handle.h"
#include "common/qk/text.h"
#include "companions/render/metadata.h"

namespace companions::render {

// The objects that qpdf has told of so far.
class Objects {
public:
    // Takes what qpdf printed; false when that is no description of a PDF.
    [[nodiscard]] bool add(const std::string& json) {
        picojson::value all;
        if (!picojson::parse(all, json).empty())
            return false;
        const picojson::value& described = all.get("qpdf").get(1);
        if (!described.is<picojson::object>())
            return false;
        for (const auto& [name, object] : described.get<picojson::object>())
            known_[name] = object.get("value");
        return true;
    }

    // The entry of a dictionary, "null" where there is none or the dictionary is not known.
    [[nodiscard]] picojson::value entry(const std::string& object, const char* key) const {
        const auto found = known_.find(object);
        return found == known_.end() ? picojson::value() : found->second.get(key);
    }

    // A whole dictionary; empty where it is not known.
    [[nodiscard]] picojson::object dictionary(const std::string& object) const {
        const auto found = known_.find(object);
        return found == known_.end() || !found->second.is<picojson::object>()
                   ? picojson::object()
                   : found->second.get<picojson::object>();
    }

    [[nodiscard]] bool knows(const std::string& object) const { return known_.contains(object); }

private:
    picojson::object known_;
};

namespace {

// "2 0 R" is called "obj:2 0 R" where it is described, and asked for as "2,0".
std::string described_name(const picojson::value& reference) {
    return "obj:" + reference.to_str();
}

std::string asked_name(const picojson::value& reference) {
    std::string text = reference.to_str();
    text = text.substr(0, text.rfind(' '));
    if (const size_t blank = text.find(' '); blank != std::string::npos)
        text[blank] = ',';
    return text;
}

std::string first_line(const std::string& output) {
    return output.substr(0, output.find_first_of("\r\n"));
}

// The first bytes of a PDF, where a linearized one has its trailer.
std::string start_of(const std::wstring& path) {
    const qk::FileObj file(
        CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    char bytes[4096];
    DWORD read = 0;
    if (!file || !ReadFile(file.get(), bytes, sizeof bytes, &read, nullptr))
        return {};
    return {bytes, read};
}

// The object that stands behind a key ("/Root ") there, as it is asked for; empty when there is none. What is
// wrong costs another look.
std::string named_at_start(std::string_view start, std::string_view key) {
    constexpr size_t kMostDigits = 7;  // a number that is none would be a fault to qpdf
    const size_t at = start.find(key);
    const std::string_view value = at == std::string_view::npos ? "" : start.substr(at + key.size());
    const size_t digits = std::min(value.find_first_not_of("0123456789"), value.size());
    return digits > 0 && digits <= kMostDigits && value.substr(digits).starts_with(" 0 R")
               ? std::string(value.substr(0, digits)) + ",0"
               : std::string();
}

}  // namespace

std::optional<std::string> find_fault_of_end(const std::wstring& path) {
    constexpr LONGLONG kEnd = 1024;  // bytes in which readers look for it
    const qk::FileObj file(
        CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    LARGE_INTEGER size = {};
    if (!file || !GetFileSizeEx(file.get(), &size))
        return "it cannot be read";
    const LARGE_INTEGER from = {.QuadPart = std::max<LONGLONG>(size.QuadPart - kEnd, 0)};
    char bytes[kEnd];
    DWORD read = 0;
    if (!SetFilePointerEx(file.get(), from, nullptr, FILE_BEGIN) ||
        !ReadFile(file.get(), bytes, sizeof bytes, &read, nullptr))
        return "it cannot be read";
    const std::string_view end(bytes, read);
    constexpr std::string_view kStart = "startxref";
    const size_t at = end.rfind(kStart);
    if (at == std::string_view::npos || end.find("%%EOF", at) == std::string_view::npos)
        return "its end is missing";
    const LONGLONG table = std::strtoll(std::string(end.substr(at + kStart.size())).c_str(), nullptr, 10);
    if (table <= 0 || table >= size.QuadPart)
        return "its table of objects is not there";
    return std::nullopt;
}

PdfTool::PdfTool(const ScratchFolder& scratch, const std::wstring& password)
    : scratch_(scratch), program_(Engine::qpdf()), password_(qk::to_utf8(password)) {
    if (!password_.empty())
        password_arguments_ = {"--password-file=" + path_for_tool(scratch_.write(kPasswordFile, password_))};
}

bool PdfTool::present() {
    if (!present_)
        present_ =
            program_.run({"--version"}, scratch_.path(), [](std::string_view) {}) == Engine::End::kDone;
    return *present_;
}

std::string PdfTool::path_for_tool(const std::wstring& path) const {
    return program_.find_path(path).value_or(std::string());
}

Engine::End PdfTool::run(std::vector<std::string> arguments, std::string& output) {
    arguments.insert(arguments.begin(), password_arguments_.begin(), password_arguments_.end());
    output.clear();
    const Engine::End end =
        program_.run(arguments, scratch_.path(), [&output](std::string_view bytes) { output += bytes; });
    present_ = end != Engine::End::kMissing;
    return end;
}

void PdfTool::rewrite(const std::wstring& from, const std::wstring& to, const Rewriting& how) {
    // In a file, since passwords stand in it. The engine's compression is the setting's and stays.
    picojson::object job;
    job["inputFile"] = picojson::value(path_for_tool(from));
    job["outputFile"] = picojson::value(path_for_tool(to));
    const picojson::value yes("");
    if (how.linearized)
        job["linearize"] = yes;
    if (how.own_lines)
        job["newlineBeforeEndstream"] = yes;
    if (how.small) {
        job["objectStreams"] = picojson::value("generate");
        job["compressionLevel"] = picojson::value("9");
        job["decodeLevel"] = picojson::value("none");  // what is compressed already would only grow
    } else {
        job["streamData"] = picojson::value("preserve");
    }
    if (how.version)
        job["forceVersion"] = picojson::value(how.version);
    if (!how.changes.empty())
        job["updateFromJson"] = picojson::value(path_for_tool(how.changes));
    if (!how.encrypt.is<picojson::null>()) {
        job["encrypt"] = how.encrypt;
        job["allowWeakCrypto"] = yes;
    } else if (!password_
                    .empty()) {  // a later qpdf loses the engine's encryption where streams are preserved
        job["copyEncryption"] = job["inputFile"];
        job["encryptionFilePassword"] = picojson::value(password_);
    }
    const std::wstring file = scratch_.write(kJobFile, picojson::value(job).serialize());
    std::string output;
    // Warnings count as failures; the new file shows.
    static_cast<void>(run({"--job-json-file=" + path_for_tool(file)}, output));
}

std::string PdfTool::describe(const std::wstring& path) {
    std::string output;
    if (run({"--json=2", "--json-key=qpdf", path_for_tool(path)}, output) != Engine::End::kDone)
        output.clear();
    return output;
}

bool PdfTool::ask(const std::wstring& path, const std::vector<std::string>& names, Objects& objects,
                  std::string& output) {
    std::vector<std::string> arguments = {"--json=2", "--json-key=qpdf"};
    for (const std::string& name : names)
        arguments.push_back("--json-object=" + name);
    arguments.push_back(path_for_tool(path));
    return run(std::move(arguments), output) == Engine::End::kDone && objects.add(output);
}

bool PdfTool::look_into(const std::wstring& path, Objects& objects, std::string& output) {
    // The engine gives these numbers to the catalogue, the information and the pages.
    std::vector<std::string> names = {"trailer", "1", "2", "3"};
    const std::string start = start_of(path);
    for (const char* key : {"/Root ", "/Info ", "/Pages "})
        if (std::string name = named_at_start(start, key); !name.empty())
            names.push_back(std::move(name));
    if (!ask(path, names, objects, output))
        return false;
    const picojson::value catalogue = objects.entry("trailer", "/Root");
    const picojson::value information = objects.entry("trailer", "/Info");
    return (objects.knows(described_name(catalogue)) && objects.knows(described_name(information))) ||
           ask(path, {asked_name(catalogue), asked_name(information)}, objects, output);
}

std::wstring PdfTool::write_texts(const std::wstring& path, const DocumentInfo& info,
                                  const std::string& version) {
    Objects objects;
    std::string output;
    if (!look_into(path, objects, output))
        return {};
    picojson::object head, changes, all, information, metadata, stream;
    const std::string information_name = described_name(objects.entry("trailer", "/Info"));
    information["value"] = picojson::value(with_texts(objects.dictionary(information_name), info));
    changes[information_name] = picojson::value(information);
    const picojson::value reference =
        objects.entry(described_name(objects.entry("trailer", "/Root")), "/Metadata");
    if (reference.is<std::string>()) {
        if (run({"--show-object=" + asked_name(reference), "--filtered-stream-data", path_for_tool(path)},
                output) != Engine::End::kDone)
            return {};
        const std::wstring file = scratch_.write(kMetadataFile, with_texts(output, info));
        stream["dict"] = picojson::value(
            picojson::object{{"/Type", picojson::value("/Metadata")}, {"/Subtype", picojson::value("/XML")}});
        stream["datafile"] = picojson::value(path_for_tool(file));
        metadata["stream"] = picojson::value(stream);
        changes[described_name(reference)] = picojson::value(metadata);
    }
    head["jsonversion"] = picojson::value(2.0);
    head["pdfversion"] = picojson::value(version);
    head["maxobjectid"] = picojson::value(1.0);
    all["qpdf"] = picojson::value(picojson::array{picojson::value(head), picojson::value(changes)});
    return scratch_.write(kChangesFile, picojson::value(all).serialize());
}

bool PdfTool::is_as_expected(const std::wstring& path, const ExpectedPdf& expected) {
    const std::string start = start_of(path);
    const std::string information = named_at_start(start, "/Info ");
    std::string output;
    if (information.empty() || (!password_.empty() && start.find("/Encrypt ") == std::string::npos) ||
        run({"--show-npages", "--show-object=" + information, path_for_tool(path)}, output) !=
            Engine::End::kDone)
        return false;
    std::string title = postscript_text(expected.title);
    std::ranges::transform(title, title.begin(), [](char c) {
        return static_cast<char>(c >= 'A' && c <= 'F' ? c - 'A' + 'a' : c);
    });
    return output.starts_with(std::to_string(expected.pages) + "\n<<") &&
           (expected.title.empty() || output.find(" /Title " + title) != std::string::npos);
}

std::optional<std::string> PdfTool::find_fault(const std::wstring& path, const ExpectedPdf& expected) {
    Objects objects;
    std::string output;
    if (!look_into(path, objects, output))
        return first_line(output);
    const picojson::value catalogue = objects.entry("trailer", "/Root");
    const picojson::value information = objects.entry("trailer", "/Info");
    const picojson::value pages = objects.entry(described_name(catalogue), "/Pages");
    if (!objects.knows(described_name(pages)) && !ask(path, {asked_name(pages)}, objects, output))
        return first_line(output);
    if (!password_.empty() && !objects.entry("trailer", "/Encrypt").is<std::string>())
        return "it is not encrypted";
    const std::string count = objects.entry(described_name(pages), "/Count").to_str();
    if (count != std::to_string(expected.pages))
        return "it has " + count + " pages, not " + std::to_string(expected.pages);
    const std::string title = objects.entry(described_name(information), "/Title").to_str();
    if (!expected.title.empty() && title != "u:" + qk::to_utf8(expected.title))
        return "its title is \"" + title + "\"";
    return std::nullopt;
}

}  // namespace companions::render
