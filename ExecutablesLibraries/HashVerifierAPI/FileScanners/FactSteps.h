#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/EntryTexts.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/IHashFunction.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/EntryFacts.h"

#include <string_view>

namespace Nerix::FileScanners {

/// Records a text of the entry in the facts. If the fact is a value (content, or an attribute's value),
/// returns a pointer to it, valid until the next call; the caller must replace the value with the result of a
/// step over the text. Otherwise returns null.
IHashFunction::hash_t* addText(EntryFacts& facts, EntryTexts::Kind kind, std::string_view text);

/// Does what IFileScanner::examine of the entry's scanner does, and also collects the facts. The steps for
/// facts are not reported to the thread's StepObserver.
IHashFunction::hash_t examineWithFacts(const FileInput& entry, IFileScanner::Remainder remainder,
                                       IHashFunction::hash_t value, const IHashFunction& function,
                                       EntryFacts& facts);

} // namespace Nerix::FileScanners
