# Temporary names are taken from many threads at once.
brindle_tsan_test()
