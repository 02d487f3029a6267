# The fuzz targets and the longest input each is given (sourced by the fuzz scripts).
TARGETS=(
  fuzz_prefs
  fuzz_file_workspace fuzz_file_setup fuzz_file_performance
  fuzz_file_layer_pool fuzz_file_all_multis fuzz_file_single_multi
  fuzz_sysex_listing fuzz_retrieve fuzz_midi_input fuzz_thru
)

max_len_of() {
  case "$1" in
    fuzz_prefs) echo 400 ;;                # the record is 169 bytes; longer files keep their tail
    fuzz_file_workspace) echo 28000 ;;     # 27850
    fuzz_file_layer_pool) echo 25000 ;;    # 24898
    fuzz_file_all_multis) echo 18400 ;;    # refused above 18200
    fuzz_file_setup) echo 3200 ;;          # 2952
    fuzz_file_performance) echo 600 ;;     # 456
    fuzz_file_single_multi) echo 400 ;;    # 192
    fuzz_sysex_listing) echo 42200 ;;      # the listing reads at most 42001
    *) echo 4096 ;;
  esac
}
