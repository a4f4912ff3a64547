#include "definition/definition_cache.h"

#include <filesystem>
#include <system_error>

#include "common/numtext.h"
#include "common/paths.h"
#include "common/textfile.h"

namespace tvx {
namespace {

std::string CacheKey(const std::string& path) { return Upper(NativePath(path)); }

}  // namespace

std::shared_ptr<DefinitionText> MakeDefinitionText(const std::string& path, std::shared_ptr<const std::string> data) {
    static uint64_t serials = 0;
    auto text = std::make_shared<DefinitionText>();
    text->Serial = ++serials;
    text->Path = path;
    text->Data = std::move(data);
    const std::string& d = *text->Data;
    size_t pos = 0;
    // The same line ends as a sequential read: CR LF, LF or CR.
    while (pos < d.size()) {
        text->LineStart.push_back(pos);
        size_t end = pos;
        while (end < d.size() && d[end] != '\r' && d[end] != '\n') ++end;
        text->LineEnd.push_back(end);
        pos = end;
        if (pos < d.size() && d[pos] == '\r') {
            ++pos;
            if (pos < d.size() && d[pos] == '\n') ++pos;
        } else if (pos < d.size() && d[pos] == '\n') {
            ++pos;
        }
    }
    text->LineStart.push_back(d.size());
    return text;
}

std::shared_ptr<DefinitionText> CachedDefinition(DefinitionCache& cache, const std::string& path) {
    if (auto exact = cache.ByExactPath.find(path); exact != cache.ByExactPath.end()) return exact->second;
    const std::string key = CacheKey(path);
    auto found = cache.Files.find(key);
    if (found == cache.Files.end()) {
        auto text = MakeDefinitionText(path, std::make_shared<const std::string>(ReadAllBytes(path)));
        found = cache.Files.emplace(key, std::move(text)).first;
    }
    cache.ByExactPath[path] = found->second;
    return found->second;
}

void HoldDefinition(DefinitionCache& cache, const std::string& path, std::shared_ptr<const std::string> data) {
    ForgetDefinition(cache, path);
    cache.Files[CacheKey(path)] = MakeDefinitionText(path, std::move(data));
}

void HoldDefinitionText(DefinitionCache& cache, const std::string& path, std::shared_ptr<DefinitionText> text) {
    ForgetDefinition(cache, path);
    cache.Files[CacheKey(path)] = std::move(text);
}

void ForgetDefinition(DefinitionCache& cache, const std::string& path) {
    const std::string key = CacheKey(path);
    cache.Files.erase(key);
    cache.Written.insert(key);
    cache.ByExactPath.clear();
    cache.LastPath.clear();
    cache.LastText.reset();
}

bool ReadAsStream(DefinitionCache& cache, const std::string& path) {
    if (cache.ByExactPath.count(path) != 0) return false;
    const std::string key = CacheKey(path);
    if (cache.Files.count(key) != 0) return false;
    if (cache.StreamWrittenFiles && cache.Written.count(key) != 0) return true;
    std::error_code error;
    const auto size = std::filesystem::file_size(FindPath(path), error);
    // A file that cannot be sized is left to the held read, which names the fault.
    return !error && size > cache.HeldSizeLimit;
}

std::shared_ptr<DefinitionText> HeldDefinitionOf(DefinitionCache& cache, const std::string& path) {
    // The quick cases first: a definition file opened again and again by the same path.
    if (cache.LastText && path == cache.LastPath) return cache.LastText;
    if (auto exact = cache.ByExactPath.find(path); exact != cache.ByExactPath.end()) {
        cache.LastPath = path;
        cache.LastText = exact->second;
        return exact->second;
    }
    if (ReadAsStream(cache, path)) return nullptr;
    return CachedDefinition(cache, path);
}

int32_t FirstLineHolding(DefinitionText& text, const std::string& word) {
    if (auto known = text.FirstHolding.find(word); known != text.FirstHolding.end()) return known->second;
    int32_t result = -1;
    for (int32_t i = 0; i < text.LineCount(); ++i) {
        if (text.Line(i).find(word) != std::string_view::npos) {
            result = i;
            break;
        }
    }
    text.FirstHolding.emplace(word, result);
    return result;
}

int32_t FirstCallableLine(DefinitionText& text, const std::string& name) {
    if (auto known = text.FirstCallable.find(name); known != text.FirstCallable.end()) return known->second;
    int32_t result = -1;
    for (int32_t i = 0; i < text.LineCount(); ++i) {
        const std::string_view line = text.Line(i);
        if (line.find(name) != std::string_view::npos && line.find("CALL") == std::string_view::npos) {
            result = i;
            break;
        }
    }
    text.FirstCallable.emplace(name, result);
    return result;
}

bool IsWordLine(std::string_view line, std::string_view word, bool& unparsable) {
    unparsable = false;
    const size_t found = line.find(word);
    if (found == std::string_view::npos) return false;
    const size_t blank = line.find(' ', found);
    if (blank == std::string_view::npos) {
        unparsable = true;
        return false;
    }
    return line.substr(0, blank) == word;
}

uint8_t BodyMarksOf(DefinitionText& text, int32_t line) {
    if (text.BodyMarks.empty()) text.BodyMarks.assign(static_cast<size_t>(text.LineCount()), 0);
    uint8_t& marks = text.BodyMarks[static_cast<size_t>(line)];
    if (marks == 0) {
        const std::string_view body = text.Line(line);
        marks = MarkKnown;
        if (body.find('\xE2') != std::string_view::npos) marks |= MarkEndOfFile;
        if (body.find("[CALL ") != std::string_view::npos) marks |= MarkCall;
        if (body.find("******") != std::string_view::npos) marks |= MarkBlockEnd;
    }
    return marks;
}

const std::vector<WordStop>& WordStopsOf(DefinitionText& text, const std::string& word) {
    if (auto known = text.WordStops.find(word); known != text.WordStops.end()) return known->second;
    std::vector<WordStop> stops;
    for (int32_t i = 0; i < text.LineCount(); ++i) {
        bool unparsable = false;
        if (IsWordLine(text.Line(i), word, unparsable) || unparsable) stops.push_back(WordStop{i, unparsable});
    }
    return text.WordStops.emplace(word, std::move(stops)).first->second;
}

}  // namespace tvx
