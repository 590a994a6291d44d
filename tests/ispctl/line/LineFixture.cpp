#include "line/LineFixture.h"

#include <filesystem>
#include <sstream>
#include <stdexcept>

#include "LibraryParser.h"
#include "line/FindingText.h"

namespace {

/// One process opens one library only.
struct OpenedLibrary {
    OpenedLibrary() {
        const std::string file = folder.Path("libScalerIsp.dylib");
        std::filesystem::copy_file(REAL_LIBRARY, file);
        std::string error;
        auto library = ispctl::ScalerLibrary::Open(file, error);
        parser = library ? ispctl::LibraryParser::Find(*library, error) : std::nullopt;
        if (!parser) {
            throw std::runtime_error(error);
        }
    }

    TempFolder folder;
    std::optional<ispctl::LibraryParser> parser;
};

OpenedLibrary &Opened() {
    static OpenedLibrary opened;
    return opened;
}

} // namespace

const TempFolder &LineFixture::Library() {
    return Opened().folder;
}

LineFixture::LineFixture() {
    m_here.Write("f.bin", std::string(0x20001, 'f'));
    m_here.Write("g.bin", "g");
    m_here.Write("empty.bin", "");
    m_here.MakeFolder("sub");
    for (const char *name : {"s.sig", "k.pem", "boot.bin"}) {
        m_here.Write(name, "x");
    }
    m_context.libraryDirectory = std::filesystem::path(Library().Path()).parent_path();
    m_context.callerDirectory = std::filesystem::path(Here()).parent_path();
    m_context.parse = [](const Words &arguments) { return Opened().parser->Parse(arguments); };
}

LineFixture::Words LineFixture::Expand(const Words &words) const {
    Words expanded;
    for (std::string word : words) {
        for (std::size_t at = word.find('@'); at != std::string::npos; at = word.find('@', at)) {
            word.replace(at, 1, Here());
            at += Here().size();
        }
        for (std::size_t at = word.find('%'); at != std::string::npos; at = word.find('%', at)) {
            word.replace(at, 1, Library().Path());
            at += Library().Path().size();
        }
        expanded.push_back(word);
    }
    return expanded;
}

LineFixture::Words LineFixture::Line(const std::string &line) const {
    std::istringstream stream(line);
    Words words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return Expand(words);
}

LineFixture::Findings LineFixture::Check(const Words &arguments) const {
    return ispctl::CheckLine(arguments, m_context);
}

LineFixture::Words LineFixture::Names(const Findings &findings) {
    Words names;
    for (const ispctl::Finding &finding : findings) {
        names.push_back(std::string(NameOf(finding.severity)) + " " + std::string(finding.name));
    }
    return names;
}

std::string LineFixture::Shown(const Words &arguments, const Findings &findings) {
    return ispctl::FindingsText(findings, {}, arguments, {.width = 100});
}
