#pragma once

namespace kelvara::demo {

/// Has the allocator keep little of what is freed: pictures of a camera's size go back to the system when they end, and
/// threads share what is free. Otherwise half of the demo's memory would be nobody's. Before the first thread; without
/// effect on allocators other than glibc's.
void keepLittleFreedMemory();

/// Gives back what small things left behind.
void returnFreedMemory();

} // namespace kelvara::demo
