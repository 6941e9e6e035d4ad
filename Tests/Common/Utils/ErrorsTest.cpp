#include "Common/Utils/Errors.h"
#include "Common/Utils/Encoding.h"
#include "Common/Utils/RethrowExceptionStream.h"
#include "Common/Utils/SupportCode.h"
#include "Common/Utils/ThreadInterrupted.h"
#include "Tests/Fakes/FakePlatform.h"

#include <boost/exception/diagnostic_information.hpp>
#include <boost/exception/errinfo_nested_exception.hpp>
#include <boost/exception/get_error_info.hpp>
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <stdexcept>

namespace Nerix::Tests {
namespace {

using namespace Common::Utils; // NOLINT(google-build-using-namespace)

void throughFrame(const char* name, const std::function<void()>& inner) {
    try {
        inner();
    } catch (...) {
        NERIX_RETHROW_WITH_CONTEXT("frame " << name);
    }
}

template <class Entry>
std::string entryOf(const boost::exception& exception) {
    const std::string* const text = boost::get_error_info<Entry>(exception);
    return text == nullptr ? "(none)" : *text;
}

using Stream = boost::error_info<tag_errinfo_stream, std::string>;
using Subject = boost::error_info<tag_errinfo_subject, std::string>;

TEST(Rethrow, ContextLinesAreOutermostFirst) {
    try {
        throughFrame("C", [] {
            throughFrame("B", [] {
                throughFrame(
                    "A", [] { BOOST_THROW_EXCEPTION(GenericException() << errinfo_stream("cause ", 7)); });
            });
        });
        FAIL();
    } catch (const GenericException& exception) {
        const std::string lines = entryOf<errinfo_rethrows>(exception);
        EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 2);
        EXPECT_EQ(lines.find(" -> void Nerix::Tests::"), 0U) << lines;
        EXPECT_NE(lines.find("ErrorsTest.cpp:"), std::string::npos);
        EXPECT_LT(lines.find(") frame C\n"), lines.find(") frame B\n"));
        EXPECT_EQ(lines.find(") frame A"), lines.size() - 9);
        EXPECT_EQ(entryOf<Stream>(exception), "cause 7");
        EXPECT_NE(
            boost::diagnostic_information(exception).find("[Nerix::Common::Utils::tag_errinfo_rethrows*] = "),
            std::string::npos);
    }
}

TEST(Rethrow, InterruptionComesOutWithContext) {
    try {
        throughFrame("outer", [] { throughFrame("inner", [] { throw boost::thread_interrupted(); }); });
        FAIL();
    } catch (const Common::Utils::thread_interrupted& interruption) {
        EXPECT_NE(entryOf<errinfo_rethrows>(interruption).find("frame outer\n -> "), std::string::npos);
    }
    EXPECT_THROW(throughFrame("X", [] { throw boost::thread_interrupted(); }), boost::thread_interrupted);
}

TEST(Rethrow, ExceptionWithoutEntriesIsUnchangedAndLogged) {
    FakePlatform::instance().reset();
    EXPECT_THROW(throughFrame("X", [] { throw std::runtime_error("plain"); }), std::runtime_error);
    const auto records = FakePlatform::instance().logHolding(">Rethrowing unknown exception:  -> void");
    ASSERT_EQ(records.size(), 1U);
    EXPECT_NE(records[0].text.find("[INF]"), std::string::npos);
    EXPECT_NE(records[0].text.find("frame X"), std::string::npos);
}

struct ThrowsWhenWritten {};
std::ostream& operator<<(std::ostream&, const ThrowsWhenWritten&) {
    throw std::bad_alloc();
}

TEST(Rethrow, FailureWhileBuildingTheLineReplacesTheException) {
    const auto failing = [] {
        try {
            throw std::runtime_error("first");
        } catch (...) {
            NERIX_RETHROW_WITH_CONTEXT(ThrowsWhenWritten());
        }
    };
    EXPECT_THROW(failing(), std::bad_alloc);
}

TEST(SupportCode, CodesStackOutermostFirst) {
    GenericException exception;
    add_supportcode_context(exception, "B");
    EXPECT_EQ(get_combined_supportcode(exception), "B");
    add_supportcode_context(exception, "C");
    EXPECT_EQ(get_combined_supportcode(exception), "C-B");

    GenericException target;
    add_supportcode_context(target, exception, "D");
    EXPECT_EQ(entryOf<errinfo_supportcode>(target), "D-C-B");
}

TEST(SupportCode, NestedExceptionsAdd) {
    const boost::exception_ptr nested = boost::copy_exception(GenericException() << errinfo_supportcode("Y"));
    GenericException outer;
    outer << boost::errinfo_nested_exception(nested);
    EXPECT_EQ(get_combined_supportcode(outer), "Y");
    outer << errinfo_supportcode("X");
    EXPECT_EQ(get_combined_supportcode(outer), "X-Y");
    EXPECT_EQ(get_combined_supportcode(GenericException()), "");
}

struct Plain {};
struct Named : IDebugName {
    std::string debugName() const override { return "Named(1)"; }
};
struct Base {
    virtual ~Base() = default;
};
struct NamedAside : Base, Named {};

TEST(ErrorInfo, SubjectIsNameOrTypeAndAddress) {
    const Plain plain;
    std::ostringstream expected;
    expected << typeid(Plain).name() << "=" << static_cast<const void*>(&plain);
    EXPECT_EQ(errinfo_subject(plain).value(), expected.str());
    EXPECT_EQ(errinfo_subject(Named()).value(), "Named(1)");
    const NamedAside aside;
    EXPECT_EQ(errinfo_subject(static_cast<const Base&>(aside)).value(), "Named(1)");
}

TEST(ErrorInfo, ErrnoTextReplacesTheStreamEntry) {
    EXPECT_EQ(get_string_from_errno(2), " errno=2 (No such file or directory)");
    GenericException exception;
    exception << errinfo_stream("first ", boost::filesystem::path("/a \"b\"&")) << errinfo_errno(2);
    EXPECT_EQ(entryOf<Stream>(exception), " errno=2 (No such file or directory)");
    EXPECT_EQ(errinfo_stream(boost::filesystem::path("/a \"b\"&")).value(), "\"/a &\"b&\"&&\"");
}

TEST(Encoding, BytesBecomeTwoDigitsEach) {
    const unsigned char bytes[] = {0x00, 0x0f, 0xa0};
    EXPECT_EQ(Encoding::binToHex(bytes, 3), "000fa0");
    EXPECT_EQ(Encoding::binToHex(nullptr, 0), "");
}

} // namespace
} // namespace Nerix::Tests
