// Mutexes and their owners. A thread is known by its number in the run.
#pragma once

namespace platform {

// Takes all mutexes off a thread that ends; the next owner is told. With the run's lock held.
void abandon_mutexes(unsigned thread);

// The identifier that the program sees for a thread.
unsigned thread_id_of(unsigned thread);

} // namespace platform
