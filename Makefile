# The two everyday commands: `make run` (the designer window on the user's
# database, made from the bundled sample project) and `make test`. Both
# install what is missing first. Without a display, `make run` says how to
# use the command line and how to take screenshots instead.
PRESET ?= dev
BUILD := build/$(PRESET)

.PHONY: setup configure build run test test-asan bench clean

setup:
	@scripts/setup.sh

configure: setup
	@test -f $(BUILD)/build.ninja || cmake --preset $(PRESET) >/dev/null

build: configure
	cmake --build --preset $(PRESET)

DESIGNER := $(BUILD)/bin/pipespec-designer

run: build
	@if [ -z "$$DISPLAY" ] && [ -z "$$WAYLAND_DISPLAY" ]; then \
	  echo "No display (DISPLAY and WAYLAND_DISPLAY are unset), so the designer window cannot open."; \
	  echo "  The command line instead:  $(BUILD)/bin/pipespec --help   e.g. $(BUILD)/bin/pipespec validate --class PC-A1-DIN"; \
	  echo "  A screenshot instead:      $(DESIGNER) --screenshot designer.png --class PC-A1-DIN --page components --add FL-WN-PN16,TE-EQ --lang en"; \
	else \
	  $(DESIGNER); \
	fi

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
