#include "device/scsi_command.h"

#include <algorithm>

#include "platform/bytes.h"

// A 32-bit program would have to send the 44-byte form.
static_assert(sizeof(void*) == 8);

namespace pass_through {

void put_header(const Header& header, std::span<const std::uint8_t> cdb, std::span<std::uint8_t> request) {
  bytes::put_le(request, 0, 2, kHeaderBytes);
  request[4] = header.target;
  request[6] = header.cdb_bytes;
  request[7] = header.sense_bytes;
  request[8] = header.direction;
  bytes::put_le(request, 12, 4, header.data_bytes);
  bytes::put_le(request, 16, 4, header.seconds);
  bytes::put_le(request, 24, 8, header.data_at);
  bytes::put_le(request, 32, 4, kHeaderBytes);
  std::copy(cdb.begin(), cdb.end(), request.begin() + kCdb);
}

}  // namespace pass_through

ScsiReply send_scsi(kernel32::Handle drive, std::span<const std::uint8_t> cdb, std::size_t data_bytes) {
  constexpr std::uint8_t kSense = 32;
  constexpr std::size_t kData = 96;  // behind the sense bytes, where a pointer could stand
  constexpr std::uint32_t kLongest = 10;
  std::vector<std::uint8_t> buffer(kData + data_bytes);
  pass_through::put_header({.cdb_bytes = static_cast<std::uint8_t>(cdb.size()),
                            .sense_bytes = kSense,
                            .direction = data_bytes > 0 ? pass_through::kIn : pass_through::kNoData,
                            .data_bytes = data_bytes,
                            .seconds = kLongest,
                            .data_at = kData},
                           cdb, buffer);
  const auto size = static_cast<std::uint32_t>(buffer.size());
  std::uint32_t returned = 0;
  if (!kernel32::DeviceIoControl(drive, pass_through::kRequest, buffer.data(), size, buffer.data(), size, &returned)) {
    return {.code = std::max(kernel32::GetLastError(), 1U), .data = {}, .sense = {}};
  }
  ScsiReply reply{.status = buffer[2], .data = {}, .sense = {}};
  const std::size_t came = std::min<std::size_t>(returned, size);
  const std::size_t sense = std::min<std::size_t>(buffer[7], kSense);
  if (came < pass_through::kHeaderBytes) {
    reply.code = 13;  // winerror.h: ERROR_INVALID_DATA
    return reply;
  }
  if (came >= pass_through::kHeaderBytes + sense) {
    const auto first = buffer.begin() + pass_through::kHeaderBytes;
    reply.sense.assign(first, first + static_cast<std::ptrdiff_t>(sense));
  }
  const std::size_t moved = std::min<std::size_t>({bytes::le32(buffer, 12), data_bytes, came - std::min(came, kData)});
  reply.data.assign(buffer.begin() + kData, buffer.begin() + kData + static_cast<std::ptrdiff_t>(moved));
  return reply;
}
