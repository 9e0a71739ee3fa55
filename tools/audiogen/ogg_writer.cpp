#include <vorbis/vorbisenc.h>

#include <algorithm>
#include <cstring>

#include "music.h"

namespace audiogen {

namespace {

void AppendPage(const ogg_page& og, std::vector<uint8_t>& bytes) {
  bytes.insert(bytes.end(), og.header, og.header + og.header_len);
  bytes.insert(bytes.end(), og.body, og.body + og.body_len);
}

}  // namespace

bool EncodeVorbis(const StereoBuffer& in, double quality, const std::string& title,
                  std::vector<uint8_t>& bytes, std::string& error) {
  bytes.clear();
  vorbis_info vi;
  vorbis_info_init(&vi);
  if (vorbis_encode_init_vbr(&vi, 2, in.rate, static_cast<float>(quality)) != 0) {
    vorbis_info_clear(&vi);
    error = "vorbis encoder refused the settings";
    return false;
  }
  vorbis_comment vc;
  vorbis_comment_init(&vc);
  vorbis_comment_add_tag(&vc, "TITLE", title.c_str());
  vorbis_comment_add_tag(&vc, "ARTIST", "Ashen Oath");
  // Loop markers for players that honour them: the whole file is the loop.
  vorbis_comment_add_tag(&vc, "LOOPSTART", "0");
  vorbis_comment_add_tag(&vc, "LOOPLENGTH", std::to_string(in.left.size()).c_str());

  vorbis_dsp_state vd;
  vorbis_block vb;
  vorbis_analysis_init(&vd, &vi);
  vorbis_block_init(&vd, &vb);
  ogg_stream_state os;
  ogg_stream_init(&os, 0x41736821);  // fixed serial: same input, same bytes

  ogg_packet header, comm, code;
  vorbis_analysis_headerout(&vd, &vc, &header, &comm, &code);
  ogg_stream_packetin(&os, &header);
  ogg_stream_packetin(&os, &comm);
  ogg_stream_packetin(&os, &code);
  ogg_page og;
  while (ogg_stream_flush(&os, &og) != 0) AppendPage(og, bytes);

  const size_t total = in.left.size();
  const size_t chunk = 4096;
  size_t done = 0;
  bool eos = false, ended = false;
  while (!eos) {
    if (ended) {
      error = "vorbis stream did not end";
      break;
    }
    if (done < total) {
      size_t n = std::min(chunk, total - done);
      float** buf = vorbis_analysis_buffer(&vd, static_cast<int>(n));
      std::memcpy(buf[0], in.left.data() + done, n * sizeof(float));
      std::memcpy(buf[1], in.right.data() + done, n * sizeof(float));
      vorbis_analysis_wrote(&vd, static_cast<int>(n));
      done += n;
    } else {
      vorbis_analysis_wrote(&vd, 0);  // end of input: the last packet carries end-of-stream
      ended = true;
    }
    while (vorbis_analysis_blockout(&vd, &vb) == 1) {
      vorbis_analysis(&vb, nullptr);
      vorbis_bitrate_addblock(&vb);
      ogg_packet op;
      while (vorbis_bitrate_flushpacket(&vd, &op)) {
        ogg_stream_packetin(&os, &op);
        while (ogg_stream_pageout(&os, &og) != 0) {
          AppendPage(og, bytes);
          if (ogg_page_eos(&og)) eos = true;
        }
      }
    }
  }
  ogg_stream_clear(&os);
  vorbis_block_clear(&vb);
  vorbis_dsp_clear(&vd);
  vorbis_comment_clear(&vc);
  vorbis_info_clear(&vi);
  return eos && !bytes.empty();
}

}  // namespace audiogen
