:rem_start
Makes the energy-shift map from the foil and keeps it in a file for fit-with-map.bat.
:rem_end
:rem_start
The foil has the same edge everywhere, so where its edge appears tells the energy shift of every
bin. The map stays when the next stack is loaded.
:rem_end
load_I0_files_of_pattern NEW i0 *.tif
load_I1_files_of_pattern NEW foil *.tif
set_band_w 1
set_band_h 1
select_region 0 0 0 0
calib_load_std standard/fe-foil.dat
calib_exec
calib_save_map results/energy-shift.emp
