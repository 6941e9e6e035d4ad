#include "Common/Utils/Errors/Errors.h"
#include "Common/Utils/Errors/RethrowExceptionStream.h"
#include "Common/Utils/Errors/ThreadInterrupted.h"
#include "Tests/Fakes/FakePlatform.h"

#include <boost/exception/diagnostic_information.hpp>
#include <boost/exception/get_error_info.hpp>
#include <gtest/gtest.h>

#include <functional>
#include <regex>
#include <stdexcept>

namespace Nerix::Tests {
namespace {

using namespace Common::Utils; // NOLINT(google-build-using-namespace): its names fill this test

void throughFrame(const char* name, const std::function<void()>& inner) {
    try {
        inner();
    } catch (...) {
        NERIX_RETHROW_WITH_CONTEXT("frame ", name);
    }
}

template <class Entry>
std::string entryOf(const boost::exception& exception) {
    const std::string* const text = boost::get_error_info<Entry>(exception);
    return text == nullptr ? "(none)" : *text;
}

TEST(Rethrow, ContextLinesAreOutermostFirst) {
    const auto fail = [] { BOOST_THROW_EXCEPTION(GenericException() << errinfo_stream("cause ", 7)); };
    try {
        throughFrame("B", [&] { throughFrame("A", fail); });
        FAIL();
    } catch (const GenericException& exception) {
        const std::string line = R"( -> void Nerix::Tests::.*\(.*ErrorsTest\.cpp:\d+\) frame )";
        const std::string lines = entryOf<errinfo_rethrows>(exception);
        EXPECT_TRUE(std::regex_match(lines, std::regex(line + "B\n" + line + "A"))) << lines;
        const std::string report = boost::diagnostic_information(exception);
        EXPECT_NE(report.find("[Nerix::Common::Utils::tag_errinfo_rethrows*] = "), std::string::npos);
        EXPECT_NE(report.find("] = cause 7\n"), std::string::npos) << report;
    }
}

TEST(Rethrow, WhatCarriesNoEntriesIsWrappedOrLogged) {
    const auto interrupt = [] { throw boost::thread_interrupted(); };
    try {
        throughFrame("outer", [&] { throughFrame("inner", interrupt); });
        FAIL();
    } catch (const Common::Utils::thread_interrupted& interruption) {
        EXPECT_NE(entryOf<errinfo_rethrows>(interruption).find("frame outer\n -> "), std::string::npos);
    }
    EXPECT_THROW(throughFrame("X", interrupt), boost::thread_interrupted)
        << "for those who know only the library's";

    FakePlatform::instance().reset();
    EXPECT_THROW(throughFrame("X", [] { throw std::runtime_error("plain"); }), std::runtime_error);
    EXPECT_EQ(FakePlatform::instance().logged(">Rethrowing unknown exception:  -> void"), 1U);
    EXPECT_EQ(FakePlatform::instance().logged("frame X"), 1U);
}

TEST(ErrorInfo, StreamEntryQuotesPathsAndIsReplacedByErrno) {
    EXPECT_EQ(errinfo_stream(boost::filesystem::path("/a \"b\"&")).value(), "\"/a &\"b&\"&&\"");
    GenericException exception;
    exception << errinfo_stream("first ") << errinfo_errno(2);
    EXPECT_EQ((entryOf<boost::error_info<tag_errinfo_stream, std::string>>(exception)),
              " errno=2 (No such file or directory)");
}

} // namespace
} // namespace Nerix::Tests
