#include "Executables/NerixHost/DescriptorBuffer.h"

#include "Common/Base/Files.h"

#include <cstddef>

namespace Nerix {

namespace {

constexpr std::size_t size = 65536;

} // namespace

DescriptorBuffer::DescriptorBuffer(int descriptor) : m_descriptor(descriptor), m_bytes(size) {
    setp(m_bytes.data(), m_bytes.data() + m_bytes.size());
}

DescriptorBuffer::int_type DescriptorBuffer::overflow(int_type character) {
    if (sync() != 0) {
        return traits_type::eof();
    }
    return traits_type::eq_int_type(character, traits_type::eof())
               ? traits_type::not_eof(character)
               : sputc(traits_type::to_char_type(character));
}

int DescriptorBuffer::sync() {
    m_error = Common::writeAll(m_descriptor, {pbase(), static_cast<std::size_t>(pptr() - pbase())});
    if (m_error != 0) {
        return -1;
    }
    setp(m_bytes.data(), m_bytes.data() + m_bytes.size());
    return 0;
}

} // namespace Nerix
