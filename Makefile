# Every target sets up what it needs first, so `make run` and `make test` work
# on a fresh Debian 12 machine (as root, or with sudo available).
BUILD_DIR ?= build
SANITIZE_DIR ?= build-sanitize
FUZZ_DIR ?= build-fuzz
FUZZ_SECONDS ?= 60
JOBS ?= $(shell nproc)
DEMO_FILE ?= $(BUILD_DIR)/demo.orvel

.PHONY: setup configure build run test test-kill bench test-sanitize fuzz format clean

setup:
	bash scripts/install-deps.sh

configure: setup
	cmake -S . -B $(BUILD_DIR) -G Ninja -DCMAKE_BUILD_TYPE=Release

build: configure
	cmake --build $(BUILD_DIR) -j $(JOBS)

run: build
	bash scripts/run-demo.sh $(BUILD_DIR)

test: build
	ctest --test-dir $(BUILD_DIR) --output-on-failure -j $(JOBS)

# Only the runs killed at random moments, checked to leave the file as it was.
test-kill: build
	ctest --test-dir $(BUILD_DIR) --output-on-failure -L kill

bench: build
	bash scripts/run-benchmarks.sh $(BUILD_DIR)

# Leaks inside the libraries we link are listed, one by one, in tests/lsan-suppressions.txt.
test-sanitize: setup
	cmake -S . -B $(SANITIZE_DIR) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DZARVI_SANITIZE=ON -DZARVI_BUILD_BENCH=OFF
	cmake --build $(SANITIZE_DIR) -j $(JOBS)
	LSAN_OPTIONS=suppressions=$(CURDIR)/tests/lsan-suppressions.txt:print_suppressions=0 \
	  ctest --test-dir $(SANITIZE_DIR) --output-on-failure -j $(JOBS)

# Each fuzz target for FUZZ_SECONDS; clang and libFuzzer are installed on first use.
fuzz:
	FUZZ_SECONDS=$(FUZZ_SECONDS) JOBS=$(JOBS) bash scripts/run-fuzz.sh $(FUZZ_DIR)

format:
	git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	rm -rf $(BUILD_DIR) $(SANITIZE_DIR) $(FUZZ_DIR)
