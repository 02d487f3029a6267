// What libjack orders without ThreadSanitizer seeing it, made visible for the ThreadSanitizer
// build: linked into every program of it ahead of libjack, so that our JACK ports and RtMidi's
// (the test peers', the virtual instrument tool's) use these.
//
// 1. The lock-free ring buffer, rebuilt.
// Why: libjack is not built with ThreadSanitizer, so the order its ring buffer gets from memory
// barriers is invisible, and each copy into and out of a buffer (our input and output rings,
// RtMidi's output queue) shows as a race between the writer and JACK's process thread.
// Suppressing those reports is not enough: ThreadSanitizer symbolizes every stack before it can match it against
// a suppression, and while it does, JACK's process thread stands still for a second or more,
// so the server runs late and drops that cycle's MIDI. Here the same buffer publishes its
// pointers with acquire and release, as ThreadSanitizer understands them: a real fault in its
// use (a second writer, a reader reaching past what was written) is still reported.
//
// The layout is libjack's own (jack/ringbuffer.h), so buffers made by jack_ringbuffer_create()
// are used as they are: a size that is a power of two, one byte always kept free.
//
// 2. The order of the process callbacks. In one cycle JACK runs a client after the clients that
// feed it, and the reader of a port's buffer after its writer; when both clients live in one
// program (a test and its peer) the buffer is shared memory handed over by libjack's own
// signals. Each process callback is run here between an acquire and a release of one clock,
// which is that order as ThreadSanitizer understands it.
#include <dlfcn.h>
#include <jack/jack.h>
#include <jack/ringbuffer.h>
#include <sanitizer/tsan_interface.h>

#include <algorithm>
#include <cstring>

namespace {

std::size_t load(const volatile std::size_t& p, int order) { return __atomic_load_n(&p, order); }
void store(volatile std::size_t& p, std::size_t v) { __atomic_store_n(&p, v, __ATOMIC_RELEASE); }

// What the writer has published and the reader not yet taken; and the room left, one byte
// always kept free so that a full buffer differs from an empty one.
std::size_t readSpace(const jack_ringbuffer_t* rb) {
  const std::size_t w = load(rb->write_ptr, __ATOMIC_ACQUIRE), r = load(rb->read_ptr, __ATOMIC_RELAXED);
  return (w - r) & rb->size_mask;
}
std::size_t writeSpace(const jack_ringbuffer_t* rb) {
  const std::size_t w = load(rb->write_ptr, __ATOMIC_RELAXED), r = load(rb->read_ptr, __ATOMIC_ACQUIRE);
  return (r - w - 1) & rb->size_mask;
}

// Copies `count` bytes out from position `at`, around the end as needed.
void copyOut(const jack_ringbuffer_t* rb, std::size_t at, char* dest, std::size_t count) {
  const std::size_t first = std::min(count, rb->size - at);
  std::memcpy(dest, rb->buf + at, first);
  std::memcpy(dest + first, rb->buf, count - first);
}

// The clock every process callback takes on entry and hands on at its end.
char cycleOrder;

struct Process {
  JackProcessCallback callback;
  void* arg;
};

int ordered(jack_nframes_t frames, void* p) {
  const auto* process = static_cast<const Process*>(p);
  __tsan_acquire(&cycleOrder);
  const int result = process->callback(frames, process->arg);
  __tsan_release(&cycleOrder);
  return result;
}

}  // namespace

extern "C" {

int jack_set_process_callback(jack_client_t* client, JackProcessCallback callback, void* arg) {
  using Set = int (*)(jack_client_t*, JackProcessCallback, void*);
  static const auto set = reinterpret_cast<Set>(dlsym(RTLD_NEXT, "jack_set_process_callback"));
  // Lives as long as the client may call it: a few bytes per client opened.
  return set(client, &ordered, new Process{callback, arg});
}

size_t jack_ringbuffer_read_space(const jack_ringbuffer_t* rb) { return readSpace(rb); }

size_t jack_ringbuffer_write_space(const jack_ringbuffer_t* rb) { return writeSpace(rb); }

size_t jack_ringbuffer_peek(jack_ringbuffer_t* rb, char* dest, size_t cnt) {
  const std::size_t n = std::min(cnt, readSpace(rb));
  copyOut(rb, load(rb->read_ptr, __ATOMIC_RELAXED), dest, n);
  return n;
}

size_t jack_ringbuffer_read(jack_ringbuffer_t* rb, char* dest, size_t cnt) {
  const std::size_t n = std::min(cnt, readSpace(rb)), r = load(rb->read_ptr, __ATOMIC_RELAXED);
  copyOut(rb, r, dest, n);
  store(rb->read_ptr, (r + n) & rb->size_mask);
  return n;
}

void jack_ringbuffer_read_advance(jack_ringbuffer_t* rb, size_t cnt) {
  store(rb->read_ptr, (load(rb->read_ptr, __ATOMIC_RELAXED) + cnt) & rb->size_mask);
}

size_t jack_ringbuffer_write(jack_ringbuffer_t* rb, const char* src, size_t cnt) {
  const std::size_t n = std::min(cnt, writeSpace(rb)), w = load(rb->write_ptr, __ATOMIC_RELAXED);
  const std::size_t first = std::min(n, rb->size - w);
  std::memcpy(rb->buf + w, src, first);
  std::memcpy(rb->buf, src + first, n - first);
  store(rb->write_ptr, (w + n) & rb->size_mask);
  return n;
}

void jack_ringbuffer_write_advance(jack_ringbuffer_t* rb, size_t cnt) {
  store(rb->write_ptr, (load(rb->write_ptr, __ATOMIC_RELAXED) + cnt) & rb->size_mask);
}

}  // extern "C"
