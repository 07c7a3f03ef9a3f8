// Writes FLAC files without compressing them: every block holds its samples as they are (RFC 9639,
// verbatim subframes: whole bytes). Enough to carry generated signals bit by bit.

const kBlock = 4096;  // samples

// Bits, from the most significant one on.
class Bits {
  constructor() { this.bytes = []; this.m_byte = 0; this.m_count = 0; }

  put(value, count) {
    for (let bit = count - 1; bit >= 0; --bit) {
      this.m_byte = (this.m_byte << 1) | (Math.floor(value / 2 ** bit) & 1);
      this.m_count += 1;
      if (this.m_count === 8) {
        this.bytes.push(this.m_byte);
        this.m_byte = 0;
        this.m_count = 0;
      }
    }
  }

  pad() { if (this.m_count > 0) this.put(0, 8 - this.m_count); }
}

function crc(bytes, polynomial, width) {
  const top = 1 << (width - 1);
  const mask = (1 << width) - 1;
  let rest = 0;
  for (const byte of bytes) {
    rest ^= byte << (width - 8);
    for (let bit = 0; bit < 8; ++bit) {
      rest = (rest & top ? (rest << 1) ^ polynomial : rest << 1) & mask;
    }
  }
  return rest;
}

// The number of a frame, coded as UTF-8 codes characters.
function putNumber(bits, number) {
  if (number < 128) {
    bits.put(number, 8);
    return;
  }
  bits.put(0xc0 | (number >> 6), 8);
  bits.put(0x80 | (number & 63), 8);
}

function frame(channels, rate, width, number, from, size) {
  const bits = new Bits();
  bits.put(0x3ffe, 14);
  bits.put(0, 2);                       // blocks of one size
  bits.put(7, 4);                       // their size stands below, in 16 bits
  bits.put(0, 4);                       // the rate stands in the header of the file
  bits.put(channels.length - 1, 4);
  bits.put(width === 16 ? 4 : 6, 3);
  bits.put(0, 1);
  putNumber(bits, number);
  bits.put(size - 1, 16);
  bits.put(crc(bits.bytes, 0x07, 8), 8);
  for (const samples of channels) {
    bits.put(2, 8);                     // verbatim
    const full = 2 ** (width - 1);
    for (let at = from; at < from + size; ++at) {
      const value = Math.max(-full, Math.min(full - 1, Math.round(samples[at] * full)));
      for (let byte = width - 8; byte >= 0; byte -= 8) bits.bytes.push((value >> byte) & 255);
    }
  }
  bits.pad();
  bits.put(crc(bits.bytes, 0x8005, 16), 16);
  return bits.bytes;
}

// channels: lists of samples from -1 to 1, of one length. Returns the bytes of a file.
export function flac(channels, rate, width = 16) {
  const head = new Bits();
  const length = channels[0].length;
  for (const byte of Buffer.from('fLaC')) head.put(byte, 8);
  head.put(1, 1);                       // the last block of metadata
  head.put(0, 7);
  head.put(34, 24);
  head.put(kBlock, 16);
  head.put(kBlock, 16);
  head.put(0, 48);
  head.put(rate, 20);
  head.put(channels.length - 1, 3);
  head.put(width - 1, 5);
  head.put(length, 36);
  for (let at = 0; at < 16; ++at) head.put(0, 8);
  const parts = [Buffer.from(head.bytes)];
  for (let from = 0, number = 0; from < length; from += kBlock, ++number) {
    const size = Math.min(kBlock, length - from);
    parts.push(Buffer.from(frame(channels, rate, width, number, from, size)));
  }
  return Buffer.concat(parts);
}
