# The two everyday commands: `make run` (the command line on the user's
# database, made from the bundled sample project) and `make test`. Both
# install what is missing first.
PRESET ?= dev
BUILD := build/$(PRESET)

.PHONY: setup configure build run test test-asan bench clean

setup:
	@scripts/setup.sh

configure: setup
	@test -f $(BUILD)/build.ninja || cmake --preset $(PRESET) >/dev/null

build: configure
	cmake --build --preset $(PRESET)

run: build
	$(BUILD)/bin/pipespec validate --class "PC-A1-DIN"

test: build
	ctest --preset $(PRESET)

test-asan:
	$(MAKE) test PRESET=asan

# BENCH_ARGS goes to the benchmark program, e.g. BENCH_ARGS=--benchmark_filter=BM_QueryRefresh50k
bench:
	$(MAKE) build PRESET=release
	build/release/bin/pipespec_bench $(BENCH_ARGS)

clean:
	rm -rf build
