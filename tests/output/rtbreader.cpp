#include "output/rtbreader.h"

#include <stdexcept>
#include <string>

namespace vantorel::test {

namespace {

class Reader {
public:
    explicit Reader(View bytes) : file(bytes) {}

    Rtb read() {
        rtb.checksum = number(4);
        demand(number(3) == 0, "three zero bytes behind the checksum");
        readstream();
        demand(number(4) == 0xFFFFFFFF, "the mark behind the stream");
        for (uint32_t place = number(4); place != 0; place = number(4))
            rtb.bcpl.push_back(place);
        if (!rtb.bcpl.empty()) demand(number(4) == 0, "a long 0 behind the end of the BCPL list");
        demand(position == file.size(), "the end of the file");
        return rtb;
    }

private:
    static void demand(bool holds, const char* what) {
        if (!holds) throw std::runtime_error(std::string("RTB file without ") + what);
    }

    uint32_t number(size_t size) {
        demand(file.size() - position >= size, "its last bytes");
        uint32_t value = 0;
        for (const size_t end = position + size; position < end; ++position)
            value = value * 256 + file[position];
        return value;
    }

    /// A word at an even position, behind a zero byte, and another one where that is needed.
    uint32_t wordentry() {
        if (position % 2 != 0) demand(number(1) == 0, "the zero byte before a word");
        return number(2);
    }

    void readstream() {
        int32_t place = 0;
        for (;;) {
            uint32_t distance = number(1);
            if (distance == 0) distance = wordentry();
            if (distance == 0) break; // a long 0 ends the stream
            place += static_cast<int32_t>(distance);
            rtb.places.push_back(place);
        }
        // The last place ends at an even position. With none the end mark begins at an odd one, where only
        // three of its bytes look like an entry.
        if (rtb.places.empty()) demand(number(1) == 0, "the last byte of the end mark");
    }

    View file;
    size_t position = 0;
    Rtb rtb;
};

} // namespace

Rtb readrtb(View file) { return Reader(file).read(); }

Bytes moved(Bytes image, const Rtb& rtb, uint32_t distance) {
    for (const int32_t place : rtb.places) {
        if (!isinside(image, place, 4)) throw std::runtime_error("a place outside the image");
        uint64_t carry = distance;
        for (size_t i = static_cast<size_t>(place) + 4; i-- > static_cast<size_t>(place);) {
            carry += image[i]; // its low byte goes into the image, the rest into the byte before
            image[i] = static_cast<uint8_t>(carry);
            carry >>= 8;
        }
    }
    return image;
}

} // namespace vantorel::test
