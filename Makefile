# Two commands set everything up: `make run` and `make test`.
BUILD_DIR ?= build
JOBS ?= $(shell nproc)

.PHONY: deps configure build run test bench install clean

deps:
	@bash scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null

build: configure
	@cmake --build $(BUILD_DIR) -j $(JOBS)

run: build
	@bash scripts/run.sh $(BUILD_DIR)/nubella

test: build
	@cd $(BUILD_DIR) && ctest --output-on-failure -j $(JOBS)

bench: build
	@cmake --build $(BUILD_DIR) --target benchmarks -j $(JOBS)

PREFIX ?= /usr/local
install: build
	@cmake --install $(BUILD_DIR) --prefix $(PREFIX)

clean:
	@rm -rf $(BUILD_DIR)
