brindle_tsan_test()
