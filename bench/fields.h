#ifndef TQ_BENCH_FIELDS_H
#define TQ_BENCH_FIELDS_H

namespace tq::bench {

// Registers calls that touch one field or the front of a list, with few entries and with many.
void register_fields();

}  // namespace tq::bench

#endif
