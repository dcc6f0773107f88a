# Front door. `make run` and `make test` are all a fresh machine needs.
.PHONY: deps run test bench dev fuzz clean package run-wayland

BUILD_JOBS ?= $(shell nproc)

deps:
	@scripts/install-deps

# Release build, then the agent's demo on its embedded sample schedule.
run: deps
	@cmake --preset release >/dev/null
	@cmake --build --preset release -j $(BUILD_JOBS)
	@scripts/run-demo build/release

# The same demo on a private Wayland desktop (headless sway), saving
# build/demo/shield-wayland.png.
run-wayland: deps
	@cmake --preset release >/dev/null
	@cmake --build --preset release -j $(BUILD_JOBS) --target kovi-holds
	@scripts/run-demo-wayland build/release

# The agent as a Debian package: build/release/kovi-holds_<version>_amd64.deb.
package: deps
	@cmake --preset release >/dev/null
	@cmake --build --preset release -j $(BUILD_JOBS) --target kovi-holds
	@cd build/release && cpack -G DEB

# What CI runs: warnings are errors, then the whole suite; ctest's summary is last.
test: deps
	@cmake --preset ci >/dev/null
	@cmake --build --preset ci -j $(BUILD_JOBS)
	@ctest --preset ci

# Every benchmark in bench/, optimised, each reporting against its in-run baseline.
bench: deps
	@cmake --preset release -DKOVI_BUILD_BENCHMARKS=ON >/dev/null
	@cmake --build --preset release -j $(BUILD_JOBS)
	@scripts/run-benchmarks build/release

# Debug build with AddressSanitizer and UndefinedBehaviorSanitizer, and its tests.
dev: deps
	@cmake --preset dev >/dev/null
	@cmake --build --preset dev -j $(BUILD_JOBS)
	@ctest --preset dev

# clang + libFuzzer build of every fuzz target; run one with e.g.
# build/fuzz/fuzz/snapshot/fuzz_snapshot fuzz/corpus/fuzz_snapshot -max_total_time=60
fuzz:
	@scripts/install-deps fuzz
	@cmake --preset fuzz >/dev/null
	@cmake --build --preset fuzz -j $(BUILD_JOBS) --target $$(cmake --build --preset fuzz --target help | sed -n 's/^\(fuzz_[a-z_]*\):.*/\1/p' | tr '\n' ' ')

clean:
	rm -rf build
