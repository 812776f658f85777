:rem_start
Fits the sample at energies corrected with the map that calibrate.bat saved. Energy maps load only
on square images: make the measurement with, for example, --size 192x192.
:rem_end
load_I0_files_of_pattern NEW i0 *.tif
load_I1_files_of_pattern NEW i1 *.tif
calib_load_map results/energy-shift.emp
set_band_w 1
set_band_h 1
select_region 0 0 0 0
:rem_start
References: index, use, energy shift in eV, file, background (0 = straight lines).
:rem_end
analyzer_set_LCF_std 0 1 0.0 references/metal.dat 0
analyzer_set_LCF_std 1 1 0.0 references/oxide2.dat 0
analyzer_set_LCF_std 2 1 0.0 references/oxide3.dat 0
analyzer_set_LCF_mode 0
analyzer_set_dMut_scale_min 0.0
analyzer_set_dMut_scale_max 1.0
analyzer_set_ratio_scale_min 0.0
analyzer_set_ratio_scale_max 1.0
analyzer_set_fixed_scale 1
analyzer_exec_LCF
:rem_start
Pictures of all maps: results/with-map-R-0.png is the edge jump due to reference R,
results/with-map-R-1.png its fraction.
:rem_end
save_all_images results/with-map.png
:rem_start
Each fraction map as a 16-bit TIFF file (0 to 65535 for fractions 0 to 1) and as a text table with
one line "x,y,value" for each bin.
:rem_end
analyzer_select_image_type 1
saveDataCfg_tiff_fix_scale 1
saveDataCfg_tiff_scale_min 0.0
saveDataCfg_tiff_scale_max 1.0
saveDataCfg_tiff_as_analyzed 1
saveDataCfg_text_as_csv
saveDataCfg_text_as_xyz
:for ref %r 0 2
analyzer_select_image %r
saveDataCfg_save_as_tiff
save_data_as_tiff results/with-map-fraction-%r.tif
saveDataCfg_save_as_text
save_data_as_tiff results/with-map-fraction-%r.csv
:next ref
