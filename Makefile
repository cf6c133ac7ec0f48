# zvp: the two commands a newcomer runs are `make demo` and `make test`.
JOBS ?= $(shell nproc 2>/dev/null || echo 2)
FUZZERS := $(wildcard fuzz/*_fuzz.cpp)

.PHONY: all deps build demo test test-release test-sanitize test-fuzz bench clean

all: build

deps:
	@scripts/install-deps

build: deps
	cmake --preset release
	cmake --build --preset release -j $(JOBS)

demo: build
	./build/examples/zvp_demo

# Every test: the optimised build, the same suite under AddressSanitizer and
# UndefinedBehaviorSanitizer, and a short run of each fuzzer.
test: deps
	$(MAKE) --no-print-directory test-release
	$(MAKE) --no-print-directory test-sanitize
	$(MAKE) --no-print-directory test-fuzz

test-release:
	cmake --preset release
	cmake --build --preset release -j $(JOBS)
	ctest --preset release -j $(JOBS)

test-sanitize:
	cmake --preset sanitize
	cmake --build --preset sanitize -j $(JOBS)
	ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  ctest --preset sanitize -j $(JOBS)

test-fuzz:
ifneq ($(FUZZERS),)
	cmake --preset fuzz
	cmake --build --preset fuzz -j $(JOBS)
	ctest --preset fuzz
else
	@echo "no fuzzers yet"
endif

# Benchmarks: every bench/*_bench program at one and two threads.
bench: build
	@for b in build/bench/*_bench; do echo "== $$b"; $$b --benchmark_min_time=0.2 || exit 1; done

clean:
	rm -rf build build-asan build-fuzz
