// A PNG writer for the screenshots the Windows tests take. The pictures are
// small and written once, so the image data goes into stored (uncompressed)
// deflate blocks, which keeps the test support free of zlib.
#ifndef QUILTOOL_PNG_WRITER_H
#define QUILTOOL_PNG_WRITER_H

#include <string>
#include <vector>

namespace qt_test {

// rgb holds height rows of width pixels, top row first, three bytes each.
bool WritePng(const std::string& path, int width, int height, const std::vector<unsigned char>& rgb);

}  // namespace qt_test

#endif
