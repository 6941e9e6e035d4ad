#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/LackOfResources.h"

#include "Common/IO/OpenSSLException.h"
#include "Common/Utils/Errors/Errors.h"

#include <boost/exception/get_error_info.hpp>
#include <boost/filesystem/exception.hpp>

#include <cerrno>
#include <new>

namespace Nerix::FileScanners {

namespace {

bool isLackOfResources(int error) {
    return error == ENOMEM || error == EMFILE || error == ENFILE;
}

} // namespace

bool isLackOfResources() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return true;
    } catch (const Common::Utils::Encoding::OpenSSLException&) {
        return true;
    } catch (const boost::filesystem::filesystem_error& failure) {
        return isLackOfResources(failure.code().default_error_condition().value());
    } catch (const boost::exception& failure) {
        const int* const error = boost::get_error_info<Common::Utils::errinfo_errorcode>(failure);
        return error != nullptr && isLackOfResources(*error);
    } catch (...) {
        return false;
    }
}

} // namespace Nerix::FileScanners
