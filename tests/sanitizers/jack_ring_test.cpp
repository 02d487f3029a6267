// The ring buffer the ThreadSanitizer build puts in front of libjack's behaves as libjack's own:
// the same counts, spaces and bytes for any sequence of writes, reads, peeks and advances,
// around the end of the buffer many times over.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <jack/ringbuffer.h>

#include <random>
#include <vector>

namespace {

template <typename F>
F libjacks(const char* name) {
  return reinterpret_cast<F>(dlsym(RTLD_NEXT, name));
}

TEST(JackRing, BehavesAsLibjacksOwnAroundTheEnd) {
  using Move = size_t (*)(jack_ringbuffer_t*, char*, size_t);
  using Write = size_t (*)(jack_ringbuffer_t*, const char*, size_t);
  using Space = size_t (*)(const jack_ringbuffer_t*);
  using Advance = void (*)(jack_ringbuffer_t*, size_t);
  const auto read = libjacks<Move>("jack_ringbuffer_read"), peek = libjacks<Move>("jack_ringbuffer_peek");
  const auto write = libjacks<Write>("jack_ringbuffer_write");
  const auto readSpace = libjacks<Space>("jack_ringbuffer_read_space"), writeSpace = libjacks<Space>("jack_ringbuffer_write_space");
  const auto readAdvance = libjacks<Advance>("jack_ringbuffer_read_advance"), writeAdvance = libjacks<Advance>("jack_ringbuffer_write_advance");
  ASSERT_TRUE(read && peek && write && readSpace && writeSpace && readAdvance && writeAdvance);
  ASSERT_NE(reinterpret_cast<void*>(read), reinterpret_cast<void*>(&jack_ringbuffer_read)) << "the rebuilt buffer is not linked in";

  jack_ringbuffer_t* ours = jack_ringbuffer_create(64);
  jack_ringbuffer_t* theirs = jack_ringbuffer_create(64);
  std::mt19937 random(7);
  std::vector<char> data(100), a(100), b(100);
  for (int step = 0; step < 20000; ++step) {
    const size_t n = random() % 80;
    for (char& c : data) c = static_cast<char>(random());
    switch (random() % 6) {
      case 0: case 1: ASSERT_EQ(jack_ringbuffer_write(ours, data.data(), n), write(theirs, data.data(), n)) << step; break;
      case 2: ASSERT_EQ(jack_ringbuffer_read(ours, a.data(), n), read(theirs, b.data(), n)) << step; ASSERT_EQ(a, b) << step; break;
      case 3: ASSERT_EQ(jack_ringbuffer_peek(ours, a.data(), n), peek(theirs, b.data(), n)) << step; ASSERT_EQ(a, b) << step; break;
      case 4: {
        const size_t k = std::min(n, readSpace(theirs));
        jack_ringbuffer_read_advance(ours, k);
        readAdvance(theirs, k);
        break;
      }
      case 5: {
        const size_t k = std::min(n, writeSpace(theirs));
        jack_ringbuffer_write_advance(ours, k);
        writeAdvance(theirs, k);
        break;
      }
    }
    ASSERT_EQ(jack_ringbuffer_read_space(ours), readSpace(theirs)) << step;
    ASSERT_EQ(jack_ringbuffer_write_space(ours), writeSpace(theirs)) << step;
  }
  jack_ringbuffer_free(ours);
  jack_ringbuffer_free(theirs);
}

}  // namespace
