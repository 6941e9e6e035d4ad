#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/EntryTexts.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/IHashFunction.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/EntryFacts.h"

#include <string_view>

namespace Nerix::FileScanners {

/// Adds to the facts what follows from a text of the entry. Returns the value that is still to be replaced by
/// a step over the text, or null if no step is needed. The pointer is valid until the next call.
IHashFunction::hash_t* addText(EntryFacts& facts, EntryTexts::Kind kind, std::string_view text);

/// Does what IFileScanner::examine of the entry's scanner does, and collects the facts as well. The steps
/// over facts are not reported to the thread's StepObserver.
IHashFunction::hash_t examineWithFacts(const FileInput& entry, IFileScanner::Remainder remainder,
                                       IHashFunction::hash_t value, const IHashFunction& function,
                                       EntryFacts& facts);

} // namespace Nerix::FileScanners
