#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FactSteps.h"

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/StepObserver.h"

namespace Nerix::FileScanners {

using hash_t = IHashFunction::hash_t;

namespace {

/// Hides steps from the thread's previous observer.
class UnreportedSteps final : public HashFunctions::StepObserver {
public:
    void onStep(unsigned long long) override {}
    void onReadError(int) noexcept override {}
};

hash_t applied(const IHashFunction& function, hash_t value, std::string_view text) {
    return function.apply(value, static_cast<unsigned int>(text.size()), text.data());
}

} // namespace

hash_t* addText(EntryFacts& facts, EntryTexts::Kind kind, std::string_view text) {
    switch (kind) {
    case EntryTexts::Kind::content:
        return &facts.content;
    case EntryTexts::Kind::attributeName:
        facts.attributes.push_back({std::string(text), 0});
        break;
    case EntryTexts::Kind::attributeValue:
        return &facts.attributes.back().value;
    case EntryTexts::Kind::target:
        facts.target = text;
        break;
    case EntryTexts::Kind::path:
    case EntryTexts::Kind::status:
    case EntryTexts::Kind::separator:
        break;
    }
    return nullptr;
}

hash_t examineWithFacts(const FileInput& entry, IFileScanner::Remainder remainder, hash_t value,
                        const IHashFunction& function, EntryFacts& facts) {
    constexpr std::size_t bufferSize = 131072;
    EntryTexts::Buffer buffer(bufferSize);
    EntryTexts texts(entry, remainder, buffer, EntryTexts::Lease::wait);
    std::string_view text;
    while (texts.next(text)) {
        value = applied(function, value, text);
        if (hash_t* const fact = addText(facts, texts.kind(), text)) {
            const UnreportedSteps unreported;
            *fact = applied(function, *fact, text);
        }
    }
    if (texts.readError() != 0) {
        HashFunctions::StepObserver::reportReadError(texts.readError());
    }
    return value;
}

} // namespace Nerix::FileScanners
