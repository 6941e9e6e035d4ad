#include "Common/IO/ISink.h"

#include "Common/IO/IOExceptions.h"
#include "Common/Utils/Errors/Errors.h"

namespace Nerix::Common::IO {

void ISink::throwIfEndOfDataMarked() {
    if (endOfDataMarked()) {
        BOOST_THROW_EXCEPTION(IOExceptions::EndOfDataMarkedException() << Utils::errinfo_subject(*this));
    }
}

} // namespace Nerix::Common::IO
