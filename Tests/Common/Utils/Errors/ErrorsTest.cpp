#include "Common/Utils/Errors/Errors.h"
#include "Common/Utils/Errors/RethrowExceptionStream.h"
#include "Common/Utils/Errors/SupportCode.h"
#include "Common/Utils/Errors/ThreadInterrupted.h"
#include "Tests/Fakes/FakePlatform.h"

#include <boost/exception/diagnostic_information.hpp>
#include <boost/exception/errinfo_nested_exception.hpp>
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
    } catch (...) { NERIX_RETHROW_WITH_CONTEXT("frame ", name); }
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
    EXPECT_THROW(throughFrame("X", interrupt), boost::thread_interrupted) << "for those who know only the library's";
    using Manipulator = std::ostream& (*)(std::ostream&);
    const auto rethrow = [](const boost::exception_ptr& exception, Manipulator manipulator) {
        RethrowExceptionStream stream(exception);
        stream.getStream() << manipulator;
    };
    EXPECT_THROW(rethrow(boost::copy_exception(boost::thread_interrupted()), std::flush), Common::Utils::thread_interrupted);
    const auto writeFails = [](std::ostream&) -> std::ostream& { throw std::runtime_error("writing"); };
    EXPECT_THROW(rethrow(boost::copy_exception(GenericException()), writeFails), std::runtime_error);
    EXPECT_DEATH(rethrow({}, std::flush), "ASSERTION FAILED: excPtr, ");

    FakePlatform::instance().reset();
    EXPECT_THROW(throughFrame("X", [] { throw std::runtime_error("plain"); }), std::runtime_error);
    EXPECT_EQ(FakePlatform::instance().logged(">Rethrowing unknown exception:  -> void"), 1U);
    EXPECT_EQ(FakePlatform::instance().logged("frame X"), 1U);
}

TEST(SupportCode, ChainsAreOutermostFirst) {
    GenericException inner;
    EXPECT_EQ(get_combined_supportcode(inner), "");
    add_supportcode_context(inner, "3");
    add_supportcode_context(inner, "2");
    EXPECT_EQ(get_combined_supportcode(inner), "2-3");
    GenericException outer;
    outer << boost::errinfo_nested_exception(boost::copy_exception(inner));
    EXPECT_EQ(get_combined_supportcode(outer), "2-3");
    add_supportcode_context(outer, "1");
    EXPECT_EQ(get_combined_supportcode(outer), "1-2-3");
    GenericException other;
    add_supportcode_context(other, outer, "0");
    EXPECT_EQ(get_combined_supportcode(other), "0-1");
    outer << boost::errinfo_nested_exception(boost::copy_exception(std::runtime_error("without entries")));
    EXPECT_EQ(get_combined_supportcode(outer), "1");
}

TEST(ErrorInfo, SubjectIsTheDebugNameOrTypeAndAddress) {
    struct Plain {
    } plain;
    struct Base {
        virtual ~Base() = default;
    };
    struct Named : Base, IDebugName {
        std::string debugName() const override { return "named"; }
    } named;
    EXPECT_EQ(errinfo_subject(named).value(), "named");
    EXPECT_EQ(errinfo_subject(static_cast<Base&>(named)).value(), "named");
    std::ostringstream address;
    address << "Plain=" << &plain;
    const std::string text = errinfo_subject(plain).value();
    EXPECT_EQ(text.substr(text.find("Plain")), address.str()) << text;
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
