#pragma once

#include "Common/Logging/LoggingClass.h"
#include "Common/Logging/LoggingStream.h"

/// The macros with which every module logs. Both put "file:line>" in front of the message.
///
///     NERIX_LOG(WRN, "Can't write to USB drive '%s'... using DLOG.", usb.c_str());
///     NERIX_LOG_STREAM(INF) << "Rethrowing unknown exception: " << text;
///
/// The printf form takes a literal format and at least one argument; use the stream form for plain text.

#define NERIX_LOG_TAG "org.corvan.tv.nerix.NERIX"

#define NERIX_LOG(level, format, ...)                                                                        \
    ::Nerix::Common::Logging::LoggingClass::print(                                                           \
        &::Nerix::Common::Logging::LoggingClass::printLines, NERIX_LOG_TAG,                                  \
        ::Nerix::Common::Logging::LoggingClass::level, "%s:%d>" format,                                      \
        ::Nerix::Common::Logging::LoggingClass::shortenPath(__FILE__), __LINE__, __VA_ARGS__)

#define NERIX_LOG_STREAM(level)                                                                              \
    ::Nerix::Common::Logging::LoggingStream(NERIX_LOG_TAG, ::Nerix::Common::Logging::LoggingClass::level,    \
                                            ::Nerix::Common::Logging::LoggingClass::shortenPath(__FILE__),   \
                                            __LINE__)                                                        \
        .getStream()
