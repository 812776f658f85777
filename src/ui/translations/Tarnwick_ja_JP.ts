<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja_JP">
<context>
    <name>Analyzer</name>
    <message>
        <source>Analyzer</source>
        <translation>解析</translation>
    </message>
    <message>
        <source>LCF/MLCF AnalysisA</source>
        <translation>LCF/MLCF 解析</translation>
    </message>
    <message>
        <source>MLCF</source>
        <translation>MLCF</translation>
    </message>
    <message>
        <source>Fit mu-t itself, with a constant and a term linear in energy, instead of the normalised spectrum</source>
        <translation>規格化スペクトルの代わりに、mu-t そのものを定数項とエネルギーの一次項を加えてフィットします</translation>
    </message>
    <message>
        <source>Analyze</source>
        <translation>解析実行</translation>
    </message>
    <message>
        <source>Fit every bin of the selected area; a second click stops</source>
        <translation>選択領域のすべてのビンをフィットします。もう一度押すと中止します</translation>
    </message>
    <message>
        <source>Disp. on Time</source>
        <translation>逐次表示</translation>
    </message>
    <message>
        <source>Show the result image after each row</source>
        <translation>1 行終わるごとに結果画像を表示します</translation>
    </message>
    <message>
        <source>Done:</source>
        <translation>進捗:</translation>
    </message>
    <message>
        <source>Per cent of the image analysed</source>
        <translation>解析済みの割合 (%)</translation>
    </message>
    <message>
        <source>[%]</source>
        <translation>[%]</translation>
    </message>
    <message>
        <source>Show View</source>
        <translation>スペクトル表示</translation>
    </message>
    <message>
        <source>Show the spectrum with its fit</source>
        <translation>スペクトルとフィット結果を表示します</translation>
    </message>
    <message>
        <source>Reference Spectra</source>
        <translation>参照スペクトル</translation>
    </message>
    <message>
        <source>Add Ref</source>
        <translation>参照スペクトルを追加</translation>
    </message>
    <message>
        <source>Add a row for one more reference spectrum</source>
        <translation>参照スペクトルの行を 1 つ追加します</translation>
    </message>
    <message>
        <source>Image Type:</source>
        <translation>画像の種類:</translation>
    </message>
    <message>
        <source>DMut</source>
        <translation>DMut</translation>
    </message>
    <message>
        <source>Edge jump due to a reference</source>
        <translation>各参照スペクトルによるエッジジャンプ</translation>
    </message>
    <message>
        <source>Min.</source>
        <translation>最小</translation>
    </message>
    <message>
        <source>Max.</source>
        <translation>最大</translation>
    </message>
    <message>
        <source>Ratio</source>
        <translation>割合</translation>
    </message>
    <message>
        <source>Fixed Scale</source>
        <translation>スケール固定</translation>
    </message>
    <message>
        <source>Show the images on the scales given here instead of their own ranges</source>
        <translation>画像ごとの範囲ではなく、ここで指定したスケールで表示します</translation>
    </message>
    <message>
        <source>Residual Absorption</source>
        <translation>残留吸収</translation>
    </message>
    <message>
        <source>Res = mut(</source>
        <translation>Res = mut(</translation>
    </message>
    <message>
        <source>Energy at which the backgrounds are taken</source>
        <translation>バックグラウンドを評価するエネルギー</translation>
    </message>
    <message>
        <source> [eV])- dmut x</source>
        <translation> [eV])- dmut x</translation>
    </message>
    <message>
        <source>How many edge jumps are taken off</source>
        <translation>差し引くエッジジャンプの倍率</translation>
    </message>
    <message>
        <source>Show the Rest</source>
        <translation>残留分を表示</translation>
    </message>
    <message>
        <source>Show dmut</source>
        <translation>dmut を表示</translation>
    </message>
    <message>
        <source>Show Ratio</source>
        <translation>割合を表示</translation>
    </message>
    <message>
        <source>Analyzing Spectrum</source>
        <translation>解析中のスペクトル</translation>
    </message>
    <message>
        <source>Select Ref%1</source>
        <translation>参照 %1 を選択</translation>
    </message>
    <message>
        <source>Show this reference&apos;s result image in the main window</source>
        <translation>この参照スペクトルの結果画像をメインウィンドウに表示します</translation>
    </message>
    <message>
        <source>Sample</source>
        <translation>試料</translation>
    </message>
    <message>
        <source>Show the residual absorption in the main window</source>
        <translation>残留吸収をメインウィンドウに表示します</translation>
    </message>
    <message>
        <source>Show the edge jump of the residual-absorption analysis in the main window</source>
        <translation>残留吸収解析で求めたエッジジャンプをメインウィンドウに表示します</translation>
    </message>
    <message>
        <source>Not while an analysis of the image runs.</source>
        <translation>画像の解析中は使えません。</translation>
    </message>
    <message>
        <source>Add two references first.</source>
        <translation>先に参照スペクトルを 2 つ追加してください。</translation>
    </message>
    <message>
        <source>Choose the file of a reference and check its Use box first.</source>
        <translation>先に参照スペクトルのファイルを選び、「使用」にチェックを入れてください。</translation>
    </message>
    <message>
        <source>Analyse every bin of the selected area; a second click stops</source>
        <translation>選択領域のすべてのビンを解析します。もう一度押すと中止します</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>中止</translation>
    </message>
    <message>
        <source>This reference took no part in the last analysis.</source>
        <translation>この参照スペクトルは直前の解析に使われていません。</translation>
    </message>
    <message>
        <source>Error Maps</source>
        <translation>誤差マップ</translation>
    </message>
    <message>
        <source>As in File</source>
        <translation>ファイルの値のまま</translation>
    </message>
    <message>
        <source>Fit the values of the references&apos; files as they are, not divided by edge jumps: for edges without room for lines, such as L edges and short scans, with MLCF</source>
        <translation>参照スペクトルをエッジジャンプで割らず、ファイルの値のままフィットします。直線を引く余地のない吸収端 (L 吸収端や短いスキャン) で MLCF とともに使います</translation>
    </message>
    <message>
        <source>Constraints:</source>
        <translation>制約:</translation>
    </message>
    <message>
        <source>Map:</source>
        <translation>マップ:</translation>
    </message>
    <message>
        <source>The map that the main window shows, of all that hold values</source>
        <translation>値のあるマップのうち、メインウィンドウに表示するもの</translation>
    </message>
    <message>
        <source>Mask</source>
        <translation>マスク</translation>
    </message>
    <message>
        <source>Difference of Two Energies</source>
        <translation>2 エネルギー間の差</translation>
    </message>
    <message>
        <source>from</source>
        <translation>E1</translation>
    </message>
    <message>
        <source>Energy whose mu-t is taken off</source>
        <translation>この mu-t を差し引くエネルギー</translation>
    </message>
    <message>
        <source>to</source>
        <translation>E2</translation>
    </message>
    <message>
        <source>Energy whose mu-t it is taken off</source>
        <translation>この mu-t から差し引かれるエネルギー</translation>
    </message>
    <message>
        <source>Take mu-t at the first energy off that at the second, for every bin of the selected area; a second click stops</source>
        <translation>選択領域のすべてのビンについて、2 番目のエネルギーの mu-t から 1 番目の mu-t を引きます。もう一度押すと中止します</translation>
    </message>
    <message>
        <source>Show the difference of two energies in the main window</source>
        <translation>2 エネルギー間の差をメインウィンドウに表示します</translation>
    </message>
    <message>
        <source>Show Difference</source>
        <translation>差を表示</translation>
    </message>
    <message>
        <source>none</source>
        <translation>なし</translation>
    </message>
    <message>
        <source>not negative</source>
        <translation>非負</translation>
    </message>
    <message>
        <source>sum of 1</source>
        <translation>合計 1</translation>
    </message>
    <message>
        <source>not negative, sum of 1</source>
        <translation>非負・合計 1</translation>
    </message>
    <message>
        <source>MLCF has no sum of 1: its coefficients are edge jumps.</source>
        <translation>MLCF の係数はエッジジャンプのため、合計を 1 にする制約はありません。</translation>
    </message>
    <message>
        <source>Analyze the image with two energies first.</source>
        <translation>先に 2 つのエネルギーで画像を解析してください。</translation>
    </message>
    <message>
        <source>Add Files...</source>
        <translation>ファイルを追加...</translation>
    </message>
    <message>
        <source>Choose reference spectra, as many as there are: each gets a row and takes part in the fit. Files can also be dropped here.</source>
        <translation>参照スペクトルのファイルをまとめて選びます。それぞれに行ができ、フィットに使われます。ファイルをここにドロップすることもできます。</translation>
    </message>
    <message>
        <source>Fit every bin</source>
        <translation>すべてのビンをフィット</translation>
    </message>
    <message>
        <source>Of the fit of the spectrum at the cursor: sum of the fractions, R factor and reduced chi-square. A dash: not known.</source>
        <translation>カーソル位置のスペクトルのフィットの、割合の合計、R 因子、換算カイ二乗です。値がないものは「-」です。</translation>
    </message>
    <message>
        <source>What the fit holds the fractions to (in MLCF the edge jumps)</source>
        <translation>フィットで割合 (MLCF ではエッジジャンプ) に課す制約</translation>
    </message>
    <message>
        <source>Make counting errors, goodness of fit, sum of the fractions and total edge jump of every bin, too; a mask needs them</source>
        <translation>ビンごとの計数誤差、フィットの良さ、割合の合計、全エッジジャンプも求めます。マスクに必要です</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>値</translation>
    </message>
    <message>
        <source>Show the map itself: the fraction, the edge jump or the total edge jump</source>
        <translation>マップの値 (割合、エッジジャンプ、全エッジジャンプ) を表示します</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>誤差</translation>
    </message>
    <message>
        <source>Show the counting error (one sigma) of the map on display; another press on Value leads back</source>
        <translation>表示中のマップの計数誤差 (1 シグマ) を表示します。「値」を押すと元に戻ります</translation>
    </message>
    <message>
        <source>R</source>
        <translation>R</translation>
    </message>
    <message>
        <source>Show the R factor of the fit in every bin</source>
        <translation>ビンごとのフィットの R 因子を表示します</translation>
    </message>
    <message>
        <source>R factor</source>
        <translation>R 因子</translation>
    </message>
    <message>
        <source>χ² red.</source>
        <translation>χ²/ν</translation>
    </message>
    <message>
        <source>Show the reduced chi-square of the fit in every bin</source>
        <translation>ビンごとのフィットの換算カイ二乗を表示します</translation>
    </message>
    <message>
        <source>Reduced chi-square</source>
        <translation>換算カイ二乗</translation>
    </message>
    <message>
        <source>Blank the bins of a fit whose total edge jump is below k times its error; a press sets k as in the field, the next one takes the mask off</source>
        <translation>全エッジジャンプがその誤差の k 倍に満たないビンを空白にします。押すと欄の k を使い、もう一度押すとマスクを外します</translation>
    </message>
    <message>
        <source>k =</source>
        <translation>k =</translation>
    </message>
    <message>
        <source>How many errors the total edge jump must reach, else the bin is blank; 0: no mask</source>
        <translation>全エッジジャンプが誤差のこの倍数に満たないビンを空白にします。0 はマスクなしです</translation>
    </message>
    <message>
        <source>Factor of the mask</source>
        <translation>マスクの係数 k</translation>
    </message>
    <message>
        <source>Move to mask more or less; the map follows at once</source>
        <translation>動かすとマスクの強さが変わり、マップにすぐ反映されます</translation>
    </message>
    <message>
        <source>Factor of the mask as a slider</source>
        <translation>マスクの係数 k のスライダー</translation>
    </message>
    <message>
        <source>Bins of the map on display that are blank</source>
        <translation>表示中のマップで空白のビンの数</translation>
    </message>
    <message>
        <source>Lower end of the scale of DMut images (edge jumps); in force with Fixed Scale</source>
        <translation>DMut 画像 (エッジジャンプ) のスケールの下限。「スケール固定」のときに有効です</translation>
    </message>
    <message>
        <source>Lower end of the scale of edge jumps</source>
        <translation>エッジジャンプのスケールの下限</translation>
    </message>
    <message>
        <source>Upper end of the scale of DMut images (edge jumps); in force with Fixed Scale</source>
        <translation>DMut 画像 (エッジジャンプ) のスケールの上限。「スケール固定」のときに有効です</translation>
    </message>
    <message>
        <source>Upper end of the scale of edge jumps</source>
        <translation>エッジジャンプのスケールの上限</translation>
    </message>
    <message>
        <source>Fraction of a reference</source>
        <translation>各参照スペクトルの割合</translation>
    </message>
    <message>
        <source>Lower end of the scale of Ratio images (fractions); in force with Fixed Scale</source>
        <translation>割合の画像のスケールの下限。「スケール固定」のときに有効です</translation>
    </message>
    <message>
        <source>Lower end of the scale of fractions</source>
        <translation>割合のスケールの下限</translation>
    </message>
    <message>
        <source>Upper end of the scale of Ratio images (fractions); in force with Fixed Scale</source>
        <translation>割合の画像のスケールの上限。「スケール固定」のときに有効です</translation>
    </message>
    <message>
        <source>Upper end of the scale of fractions</source>
        <translation>割合のスケールの上限</translation>
    </message>
    <message>
        <source>Analyse residual absorption</source>
        <translation>残留吸収を解析</translation>
    </message>
    <message>
        <source>Energy of the residual absorption in eV</source>
        <translation>残留吸収のエネルギー (eV)</translation>
    </message>
    <message>
        <source>Edge + 50</source>
        <translation>吸収端+50</translation>
    </message>
    <message>
        <source>Take the energy 50 eV above the edge of the first reference in use</source>
        <translation>使用中の最初の参照スペクトルの吸収端より 50 eV 上のエネルギーを入れます</translation>
    </message>
    <message>
        <source>Take the energy 50 eV above the edge</source>
        <translation>吸収端より 50 eV 上のエネルギーを入れる</translation>
    </message>
    <message>
        <source>Edge jumps taken off</source>
        <translation>差し引くエッジジャンプの倍率</translation>
    </message>
    <message>
        <source>Show the fraction that the residual absorption is of the edge jump in the main window</source>
        <translation>エッジジャンプに対する残留吸収の割合をメインウィンドウに表示します</translation>
    </message>
    <message>
        <source>Analyse the difference of two energies</source>
        <translation>2 エネルギー間の差を解析</translation>
    </message>
    <message>
        <source>Energy whose mu-t is taken off, in eV</source>
        <translation>mu-t を差し引くエネルギー (eV)</translation>
    </message>
    <message>
        <source>Energy whose mu-t it is taken off, in eV</source>
        <translation>mu-t を差し引かれるエネルギー (eV)</translation>
    </message>
    <message>
        <source>Sum of the fractions %1 %    R %2    χ² red. %3</source>
        <translation>割合の合計 %1 %    R %2    χ²/ν %3</translation>
    </message>
    <message>
        <source>Residual absorption at %1 eV: 50 eV above the edge of %2</source>
        <translation>残留吸収のエネルギー %1 eV: %2 の吸収端より 50 eV 上</translation>
    </message>
</context>
<context>
    <name>Answers</name>
    <message>
        <source>%1: %2 files were not taken, see Messages</source>
        <translation>%1: %2 個のファイルが読み込まれませんでした。「メッセージ」を参照してください</translation>
    </message>
    <message numerus="yes">
        <source>loaded %n dark frame(s)</source>
        <translation>
            <numerusform>ダークを %n フレーム読み込みました</numerusform>
        </translation>
    </message>
    <message>
        <source>Deglitched: %1 of %2 bins replaced</source>
        <translation>グリッチ除去: %2 ビン中 %1 ビンを置き換えました</translation>
    </message>
</context>
<context>
    <name>AreaPane</name>
    <message>
        <source>Save Mean Spectrum</source>
        <translation>平均スペクトルを保存</translation>
    </message>
    <message>
        <source>XAFS Spectra (*.dat)</source>
        <translation>XAFS スペクトル (*.dat)</translation>
    </message>
    <message>
        <source>Any Files (* *.*)</source>
        <translation>すべてのファイル (* *.*)</translation>
    </message>
    <message>
        <source>Save Statistics</source>
        <translation>統計を保存</translation>
    </message>
    <message>
        <source>Table (*.csv)</source>
        <translation>表 (*.csv)</translation>
    </message>
</context>
<context>
    <name>AreaSaving</name>
    <message>
        <source>%1: the result is %2</source>
        <translation>%1: 注意: %2です</translation>
    </message>
    <message>
        <source>there are no maps</source>
        <translation>マップがありません</translation>
    </message>
</context>
<context>
    <name>AreaStatistics</name>
    <message>
        <source>Statistics</source>
        <translation>統計</translation>
    </message>
    <message>
        <source>Bins:</source>
        <translation>ビン数:</translation>
    </message>
    <message>
        <source>Mean:</source>
        <translation>平均:</translation>
    </message>
    <message>
        <source>Standard deviation:</source>
        <translation>標準偏差:</translation>
    </message>
    <message>
        <source>Median:</source>
        <translation>中央値:</translation>
    </message>
    <message>
        <source>Minimum:</source>
        <translation>最小値:</translation>
    </message>
    <message>
        <source>Maximum:</source>
        <translation>最大値:</translation>
    </message>
    <message>
        <source>Area by threshold</source>
        <translation>しきい値による領域</translation>
    </message>
    <message>
        <source>Lower limit, included</source>
        <translation>下限 (この値を含む)</translation>
    </message>
    <message>
        <source>Upper limit, included</source>
        <translation>上限 (この値を含む)</translation>
    </message>
    <message>
        <source>Select</source>
        <translation>選択</translation>
    </message>
    <message>
        <source>Select the bins of the map on display whose value lies from the one limit to the other, as they are now</source>
        <translation>表示中のマップで、いまの値が下限以上・上限以下のビンを選択領域にします</translation>
    </message>
    <message>
        <source>From</source>
        <translation>下限</translation>
    </message>
    <message>
        <source>to</source>
        <translation>上限</translation>
    </message>
    <message>
        <source>Mean Spectrum of the Area</source>
        <translation>領域の平均スペクトル</translation>
    </message>
    <message>
        <source>Form the mean spectrum of the area and keep it in the spectrum plot; again stops it</source>
        <translation>領域の平均スペクトルを作り、プロットに固定します。もう一度押すと中止します</translation>
    </message>
    <message>
        <source>Save Mean Spectrum...</source>
        <translation>平均スペクトルを保存...</translation>
    </message>
    <message>
        <source>Save the mean spectrum of the area as a spectrum file</source>
        <translation>領域の平均スペクトルをスペクトルファイルに保存します</translation>
    </message>
    <message>
        <source>Save Statistics...</source>
        <translation>統計を保存...</translation>
    </message>
    <message>
        <source>Save the numbers of all maps inside the area as a table</source>
        <translation>領域内のすべてのマップの統計を表に保存します</translation>
    </message>
    <message>
        <source>No map is on display.</source>
        <translation>マップが表示されていません。</translation>
    </message>
    <message>
        <source>Put a map on display first.</source>
        <translation>先にマップを表示してください。</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>中止</translation>
    </message>
    <message>
        <source>Analyze the image first.</source>
        <translation>先に画像を解析してください。</translation>
    </message>
    <message>
        <source>no bin of the area has counts at all energies: there is no mean spectrum</source>
        <translation>すべてのエネルギーでカウントのあるビンが領域にないため、平均スペクトルを作れません</translation>
    </message>
    <message>
        <source>Mean of %1 bins</source>
        <translation>%1 ビンの平均</translation>
    </message>
    <message>
        <source>the mean spectrum of %1 bins is in the spectrum plot</source>
        <translation>%1 ビンの平均スペクトルをプロットに固定しました</translation>
    </message>
</context>
<context>
    <name>AreaTool</name>
    <message>
        <source>%1 x %2, bins: %3</source>
        <translation>%1 x %2、%3 ビン</translation>
    </message>
    <message>
        <source>Click the corners; double click or Enter closes the polygon</source>
        <translation>頂点をクリック。ダブルクリックか Enter で閉じます</translation>
    </message>
</context>
<context>
    <name>AreaTools</name>
    <message>
        <source>Rectangle</source>
        <translation>矩形</translation>
    </message>
    <message>
        <source>Rectangle: drag in the image to select an area; a right click or Esc removes it</source>
        <translation>矩形: 画像上をドラッグして領域を選択します。右クリックか Esc で解除します</translation>
    </message>
    <message>
        <source>Ellipse</source>
        <translation>楕円</translation>
    </message>
    <message>
        <source>Ellipse: drag the rectangle around it</source>
        <translation>楕円: 外接する矩形をドラッグします</translation>
    </message>
    <message>
        <source>Polygon</source>
        <translation>多角形</translation>
    </message>
    <message>
        <source>Polygon: click its corners; a double click or Enter closes it, Backspace takes the last corner back</source>
        <translation>多角形: 頂点をクリックします。ダブルクリックか Enter で閉じ、Backspace で最後の頂点を取り消します</translation>
    </message>
    <message>
        <source>Statistics</source>
        <translation>統計</translation>
    </message>
    <message>
        <source>Statistics and mean spectrum of the area, and an area by the values of a map</source>
        <translation>領域の統計と平均スペクトル、マップの値による領域の選択</translation>
    </message>
</context>
<context>
    <name>AreaValues</name>
    <message>
        <source>the upper limit of a threshold must not lie below the lower one</source>
        <translation>しきい値の上限は下限以上にしてください</translation>
    </message>
    <message>
        <source>no bin of the map lies from %1 to %2</source>
        <translation>値が %1 ～ %2 のビンがマップにありません</translation>
    </message>
    <message>
        <source>the area from %1 to %2 would have more than %3 corners</source>
        <translation>%1 ～ %2 の領域は頂点が %3 個を超えます</translation>
    </message>
</context>
<context>
    <name>Batch</name>
    <message>
        <source>%1 is not the file that was used</source>
        <translation>%1 は記録時に使ったファイルと内容が違います</translation>
    </message>
    <message>
        <source>unknown command</source>
        <translation>不明なコマンドです</translation>
    </message>
    <message>
        <source>no reference panel %1</source>
        <translation>参照スペクトルの行 %1 はありません</translation>
    </message>
    <message>
        <source>no such background: %1</source>
        <translation>そのようなバックグラウンドはありません: %1</translation>
    </message>
    <message>
        <source>no such crystal: %1</source>
        <translation>そのような結晶はありません: %1</translation>
    </message>
    <message>
        <source>neither I1 nor I0: %1</source>
        <translation>I1 でも I0 でもありません: %1</translation>
    </message>
    <message>
        <source>neither eV nor keV: %1</source>
        <translation>eV でも keV でもありません: %1</translation>
    </message>
    <message>
        <source>there is no frame %1</source>
        <translation>フレーム %1 はありません</translation>
    </message>
    <message>
        <source>there is no ordinate %1</source>
        <translation>縦軸 %1 はありません</translation>
    </message>
    <message>
        <source>there is no unit %1</source>
        <translation>単位 %1 はありません</translation>
    </message>
    <message>
        <source>the upper end of a range must lie above the lower one</source>
        <translation>範囲の上限は下限より大きくしてください</translation>
    </message>
    <message>
        <source>all its commands are known</source>
        <translation>コマンドはすべて認識できます</translation>
    </message>
    <message>
        <source>not known: %1</source>
        <translation>認識できないもの: %1</translation>
    </message>
    <message>
        <source>the record is of a newer version; %1</source>
        <translation>作業記録は新しいバージョンのものです。%1</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not an integer</source>
        <translation>「%1」は整数ではありません</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not a number</source>
        <translation>「%1」は数値ではありません</translation>
    </message>
    <message>
        <source>too few arguments: %1</source>
        <translation>引数が足りません: %1</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is ignored: too many arguments</source>
        <translation>引数が多すぎるため「%1」は無視されます</translation>
    </message>
    <message>
        <source>endless substitution of a loop variable</source>
        <translation>ループ変数の置き換えが終わりません</translation>
    </message>
    <message>
        <source>%1 is out of range %2 to %3</source>
        <translation>%1 は範囲 %2 ～ %3 の外です</translation>
    </message>
    <message>
        <source>the image is %1 x %2 pixels: there is no position %3, %4</source>
        <translation>画像は %1 x %2 画素のため、位置 %3, %4 はありません</translation>
    </message>
    <message>
        <source>too few arguments: a range has two ends</source>
        <translation>引数が足りません: 範囲には両端の値が必要です</translation>
    </message>
    <message>
        <source>a quote is opened but not closed</source>
        <translation>引用符が閉じられていません</translation>
    </message>
    <message>
        <source>a quote inside an item is part of it: start the item with it</source>
        <translation>項目の途中の引用符は項目の一部になります。項目の先頭に置いてください</translation>
    </message>
    <message>
        <source>this remark is never closed by :rem_end</source>
        <translation>この注釈は :rem_end で閉じられていません</translation>
    </message>
    <message>
        <source>loop &apos;%1&apos; is never closed by :next</source>
        <translation>ループ「%1」は :next で閉じられていません</translation>
    </message>
    <message>
        <source>remarks do not nest: the first :rem_end ends it</source>
        <translation>注釈は入れ子にできません。最初の :rem_end で終わります</translation>
    </message>
    <message>
        <source>:rem_end without :rem_start</source>
        <translation>:rem_start のない :rem_end です</translation>
    </message>
    <message>
        <source>the backslash at the end of the line before makes &apos;%1&apos; part of that line</source>
        <translation>前の行末のバックスラッシュにより、「%1」は前の行の続きになります</translation>
    </message>
    <message>
        <source>a backslash continues this line, but no line follows</source>
        <translation>バックスラッシュで次の行に続きますが、次の行がありません</translation>
    </message>
    <message>
        <source>only &apos;%1&apos; is echoed: put the text in quotes</source>
        <translation>「%1」だけが表示されます。文字列は引用符で囲んでください</translation>
    </message>
    <message>
        <source>:for needs four arguments: name placeholder from to</source>
        <translation>:for には 4 つの引数が必要です: name placeholder from to</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not an integer and counts as 0</source>
        <translation>「%1」は整数ではないため 0 とみなします</translation>
    </message>
    <message>
        <source>loop &apos;%1&apos; is not closed before another :for starts it anew</source>
        <translation>ループ「%1」が閉じられないうちに、同名の :for が始まっています</translation>
    </message>
    <message>
        <source>:next without :for of the name &apos;%1&apos;</source>
        <translation>「%1」という名前の :for がない :next です</translation>
    </message>
    <message>
        <source>loop &apos;%1&apos; ends before loop &apos;%2&apos; inside it</source>
        <translation>ループ「%1」が、その中のループ「%2」より先に終わっています</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is neither NEW nor ADD: the files are added</source>
        <translation>「%1」は NEW でも ADD でもないため、ファイルを追加しました</translation>
    </message>
    <message>
        <source>not a regular expression: %1</source>
        <translation>正規表現ではありません: %1</translation>
    </message>
    <message>
        <source>no images are loaded</source>
        <translation>画像が読み込まれていません</translation>
    </message>
    <message>
        <source>no such folder: %1</source>
        <translation>フォルダーがありません: %1</translation>
    </message>
    <message>
        <source>there is no file in %1</source>
        <translation>%1 にファイルがありません</translation>
    </message>
    <message>
        <source>no file matches %1 in %2</source>
        <translation>%2 に %1 に一致するファイルがありません</translation>
    </message>
    <message>
        <source>&apos;#&apos; does not start a comment: use :rem_start and :rem_end</source>
        <translation>「#」はコメントの開始ではありません。:rem_start と :rem_end を使ってください</translation>
    </message>
    <message>
        <source>unknown command (did you mean %1?)</source>
        <translation>不明なコマンドです (%1 のことですか?)</translation>
    </message>
    <message>
        <source>neither each nor mean nor an energy above 0: %1</source>
        <translation>each でも mean でも 0 より大きいエネルギーでもありません: %1</translation>
    </message>
    <message>
        <source>neither jump nor none: %1</source>
        <translation>jump でも none でもありません: %1</translation>
    </message>
    <message>
        <source>no such constraints: %1</source>
        <translation>そのような制約はありません: %1</translation>
    </message>
    <message>
        <source>no such map: %1</source>
        <translation>そのようなマップはありません: %1</translation>
    </message>
    <message>
        <source>neither off nor a number above 0: %1</source>
        <translation>off でも 0 より大きい数値でもありません: %1</translation>
    </message>
    <message>
        <source>the ranges do not ascend: each must end above its beginning, the second not begin below the end of the first</source>
        <translation>範囲が昇順ではありません。それぞれの上限は下限より大きく、2 番目の下限は 1 番目の上限以上にしてください</translation>
    </message>
    <message>
        <source>neither a number nor a map: %1</source>
        <translation>数値でもマップでもありません: %1</translation>
    </message>
    <message>
        <source>neither a number nor robust, full or stated: %1</source>
        <translation>数値でも robust、full、stated でもありません: %1</translation>
    </message>
    <message>
        <source>no such colour map: %1</source>
        <translation>そのようなカラーマップはありません: %1</translation>
    </message>
    <message>
        <source>not &apos;reversed&apos;: %1</source>
        <translation>「reversed」ではありません: %1</translation>
    </message>
    <message>
        <source>neither none nor an integer: %1</source>
        <translation>none でも整数でもありません: %1</translation>
    </message>
    <message>
        <source>%1 lies far outside any image</source>
        <translation>%1 は画像からはるかに外れた値です</translation>
    </message>
    <message>
        <source>too few arguments: a vertex has two numbers</source>
        <translation>引数が足りません: 頂点には 2 つの数値が必要です</translation>
    </message>
    <message>
        <source>there is no view of frames &apos;%1&apos;</source>
        <translation>フレームの表示方法「%1」はありません</translation>
    </message>
    <message>
        <source>only a difference has energies</source>
        <translation>エネルギーを指定できるのは差の表示だけです</translation>
    </message>
    <message>
        <source>too few arguments: which energy is taken off?</source>
        <translation>引数が足りません: 差し引くエネルギーを指定してください</translation>
    </message>
    <message>
        <source>left out: it saves, and the batch is taken up at a later line</source>
        <translation>実行しません: 保存の行で、バッチはこれより後の行から再開されています</translation>
    </message>
    <message>
        <source>%1 stands for nothing: --set gives no text for it, and no loop has it</source>
        <translation>%1 に置き換える文字がありません: --set の指定になく、繰り返しの変数でもありません</translation>
    </message>
</context>
<context>
    <name>BatchCtrl</name>
    <message>
        <source>Batch Ctrl.</source>
        <translation>バッチ制御</translation>
    </message>
    <message>
        <source>Batch Cmds</source>
        <translation>バッチコマンド</translation>
    </message>
    <message>
        <source>The batch: one command a line. A line that ends in a backslash goes on in the next one.</source>
        <translation>バッチ: 1 行に 1 コマンド。行末がバックスラッシュの行は次の行に続きます。</translation>
    </message>
    <message>
        <source>load_I1_files NEW ...</source>
        <translation>load_I1_files NEW ...</translation>
    </message>
    <message>
        <source>Progress Log</source>
        <translation>実行ログ</translation>
    </message>
    <message>
        <source>Replace the batch by one from a file</source>
        <translation>ファイルからバッチを読み込んで置き換えます</translation>
    </message>
    <message>
        <source>Load</source>
        <translation>読み込み</translation>
    </message>
    <message>
        <source>Save the batch to a file</source>
        <translation>バッチをファイルに保存します</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>Empty the progress log</source>
        <translation>実行ログを消去します</translation>
    </message>
    <message>
        <source>Clear Log</source>
        <translation>ログ消去</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>クリア</translation>
    </message>
    <message>
        <source>Run the batch from its first line</source>
        <translation>バッチを先頭行から実行します</translation>
    </message>
    <message>
        <source>Exec.</source>
        <translation>実行</translation>
    </message>
    <message>
        <source>Stop the batch after the command that is running</source>
        <translation>実行中のコマンドが終わったところでバッチを止めます</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>Batch File (*.bat)</source>
        <translation>バッチファイル (*.bat)</translation>
    </message>
    <message>
        <source>Any Files (* *.*)</source>
        <translation>すべてのファイル (* *.*)</translation>
    </message>
    <message>
        <source>Load Batch File</source>
        <translation>バッチファイルの読み込み</translation>
    </message>
    <message>
        <source>Save Batch File</source>
        <translation>バッチファイルの保存</translation>
    </message>
    <message>
        <source>Empty the batch; Ctrl+Z brings it back</source>
        <translation>バッチを消去します (Ctrl+Z で元に戻せます)</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>編集(&amp;E)</translation>
    </message>
    <message>
        <source>&amp;Insert What Was Done</source>
        <translation>作業記録を挿入(&amp;I)</translation>
    </message>
    <message>
        <source>What the batch has done; &quot;Err:&quot; stands before a line that it does not know. The last 50,000 lines are kept.</source>
        <translation>バッチの実行内容です。認識できない行には「Err:」が付きます。最新の 50,000 行を保持します。</translation>
    </message>
    <message>
        <source>Line %1 of %2</source>
        <translation>%1 / %2 行目</translation>
    </message>
    <message>
        <source>%1 done, %2 with a warning, %3 failed</source>
        <translation>完了 %1、警告あり %2、失敗 %3</translation>
    </message>
    <message>
        <source>cannot be written: %1</source>
        <translation>書き込めません: %1</translation>
    </message>
    <message>
        <source>cannot be read: %1</source>
        <translation>読み込めません: %1</translation>
    </message>
    <message>
        <source>Loaded %1</source>
        <translation>読み込みました: %1</translation>
    </message>
    <message>
        <source>Commands of the batch</source>
        <translation>バッチのコマンド</translation>
    </message>
    <message>
        <source>Log of the batch</source>
        <translation>バッチのログ</translation>
    </message>
</context>
<context>
    <name>Body</name>
    <message>
        <source>Tarnwick</source>
        <translation>Tarnwick</translation>
    </message>
    <message>
        <source>Data</source>
        <translation>データ</translation>
    </message>
    <message>
        <source>Show the frames of the I1 stack (transmitted beam)</source>
        <translation>I1 (透過X線) のフレームを表示します</translation>
    </message>
    <message>
        <source>I0</source>
        <translation>I0</translation>
    </message>
    <message>
        <source>Show the frames of the I0 stack (incident beam)</source>
        <translation>I0 (入射X線) のフレームを表示します</translation>
    </message>
    <message>
        <source>Shift</source>
        <translation>シフト</translation>
    </message>
    <message>
        <source>Show the energy-shift map</source>
        <translation>エネルギーシフトマップを表示します</translation>
    </message>
    <message>
        <source>Res. Analysis</source>
        <translation>解析結果</translation>
    </message>
    <message>
        <source>Show the result image that is selected in the Analyzer</source>
        <translation>解析パネルで選択した結果画像を表示します</translation>
    </message>
    <message>
        <source>Reset Scale</source>
        <translation>全体表示</translation>
    </message>
    <message>
        <source>Show the whole image</source>
        <translation>画像全体を表示します</translation>
    </message>
    <message>
        <source>Value of the shown image at the position</source>
        <translation>表示中の画像のカーソル位置での値</translation>
    </message>
    <message>
        <source>Position: </source>
        <translation>位置: </translation>
    </message>
    <message>
        <source>    E-Shift Tbl.: </source>
        <translation>E シフト (マップ): </translation>
    </message>
    <message>
        <source>Energy shift of the position in the energy-shift map, in eV</source>
        <translation>エネルギーシフトマップでのこの位置のシフト量 (eV)</translation>
    </message>
    <message>
        <source>   E-shift from Std.: </source>
        <translation>標準試料との E 差: </translation>
    </message>
    <message>
        <source>How far the edge of the position lies above the edge of the standard, in eV</source>
        <translation>この位置の吸収端が標準試料の吸収端よりどれだけ高エネルギー側にあるか (eV)</translation>
    </message>
    <message>
        <source>Bin half widths</source>
        <translation>ビンの半幅</translation>
    </message>
    <message>
        <source>A bin holds (2 xw + 1) x (2 yw + 1) pixels; 0 means a single pixel</source>
        <translation>ビンは (2 xw + 1) x (2 yw + 1) 画素。0 は 1 画素です</translation>
    </message>
    <message>
        <source>xw</source>
        <translation>xw</translation>
    </message>
    <message>
        <source>yw</source>
        <translation>yw</translation>
    </message>
    <message>
        <source>Windows</source>
        <translation>ウィンドウ</translation>
    </message>
    <message>
        <source>Show Spectrum</source>
        <translation>スペクトル表示</translation>
    </message>
    <message>
        <source>Show Cali. Ctrl.</source>
        <translation>校正パネル表示</translation>
    </message>
    <message>
        <source>Show Analyzer</source>
        <translation>解析パネル表示</translation>
    </message>
    <message>
        <source>Batch Ctrl.</source>
        <translation>バッチ制御</translation>
    </message>
    <message>
        <source>Dark Data</source>
        <translation>ダークデータ</translation>
    </message>
    <message>
        <source>Choose frames taken without beam; their mean is taken off the counts before spectra are formed</source>
        <translation>ビームなしで撮ったフレームを選びます。その平均をカウントから差し引いてスペクトルを作ります</translation>
    </message>
    <message>
        <source>Save Img/Data</source>
        <translation>画像・データ保存</translation>
    </message>
    <message>
        <source>Save Image</source>
        <translation>画像を保存</translation>
    </message>
    <message>
        <source>Save the image on display as a picture</source>
        <translation>表示中の画像を画像ファイルに保存します</translation>
    </message>
    <message>
        <source>Save All Images</source>
        <translation>全画像を保存</translation>
    </message>
    <message>
        <source>Save the result images of every reference in use as pictures</source>
        <translation>使用中のすべての参照スペクトルの結果画像を保存します</translation>
    </message>
    <message>
        <source>Save Flat Dark</source>
        <translation>フラット・ダーク保存</translation>
    </message>
    <message>
        <source>Write flat.dat (all 1) and dark.dat (all 0) of the image&apos;s size into the current folder</source>
        <translation>画像と同じ大きさの flat.dat (すべて 1) と dark.dat (すべて 0) を現在のフォルダーに書き出します</translation>
    </message>
    <message>
        <source>Save Proc. Data</source>
        <translation>処理データ保存</translation>
    </message>
    <message>
        <source>Save Data</source>
        <translation>データを保存</translation>
    </message>
    <message>
        <source>Save the values of the selected result image as TIFF or text</source>
        <translation>選択した結果画像の値を TIFF またはテキストで保存します</translation>
    </message>
    <message>
        <source>Cfg.</source>
        <translation>設定</translation>
    </message>
    <message>
        <source>Choose the form in which values are saved</source>
        <translation>値の保存形式を選びます</translation>
    </message>
    <message>
        <source>Save XAFS Spectra</source>
        <translation>XAFS スペクトル保存</translation>
    </message>
    <message>
        <source>Save the spectra of the spectrum window</source>
        <translation>スペクトルウィンドウのスペクトルを保存します</translation>
    </message>
    <message>
        <source>DeGlitch</source>
        <translation>グリッチ除去</translation>
    </message>
    <message>
        <source>Factor</source>
        <translation>係数</translation>
    </message>
    <message>
        <source>A point is a glitch when it stands out by more than this times the mean</source>
        <translation>周囲との差が平均のこの倍数を超える点をグリッチとみなします</translation>
    </message>
    <message>
        <source>Ratio</source>
        <translation>比率</translation>
    </message>
    <message>
        <source>Only values within this part of the range from either end are taken for glitches</source>
        <translation>値の範囲の両端からこの割合までの値だけをグリッチの候補とします</translation>
    </message>
    <message>
        <source>de Glitch</source>
        <translation>グリッチ除去</translation>
    </message>
    <message>
        <source>Deglitch Selected Map</source>
        <translation>選択中のマップのグリッチを除去します</translation>
    </message>
    <message>
        <source>Show Processed</source>
        <translation>処理後を表示</translation>
    </message>
    <message>
        <source>Show and save the processed values instead of the original ones</source>
        <translation>元の値の代わりに処理後の値を表示・保存します</translation>
    </message>
    <message>
        <source>NES</source>
        <translation>E シフトのグリッチ除去</translation>
    </message>
    <message>
        <source>Deglitch E-Shift Map</source>
        <translation>エネルギーシフトマップのグリッチを除去します</translation>
    </message>
    <message>
        <source>I1 Data</source>
        <translation>I1 データ</translation>
    </message>
    <message>
        <source>I0 Data</source>
        <translation>I0 データ</translation>
    </message>
    <message>
        <source>Spectrum</source>
        <translation>スペクトル</translation>
    </message>
    <message>
        <source>Any Files (* *.*)</source>
        <translation>すべてのファイル (* *.*)</translation>
    </message>
    <message>
        <source>Image File (*.png)</source>
        <translation>画像ファイル (*.png)</translation>
    </message>
    <message>
        <source>XAFS Spectra (*.dat)</source>
        <translation>XAFS スペクトル (*.dat)</translation>
    </message>
    <message>
        <source>Half width of the bin in pixels: it holds 2 xw + 1 columns</source>
        <translation>ビンの横の半幅 (画素)。横幅は 2 xw + 1 画素です</translation>
    </message>
    <message>
        <source>Half height of the bin in pixels: it holds 2 yw + 1 rows</source>
        <translation>ビンの縦の半幅 (画素)。縦幅は 2 yw + 1 画素です</translation>
    </message>
    <message>
        <source>At the cursor</source>
        <translation>カーソル位置</translation>
    </message>
    <message>
        <source>Value: </source>
        <translation>値: </translation>
    </message>
    <message>
        <source>The spectrum of the bin at the cursor</source>
        <translation>カーソル位置のビンのスペクトルを表示します</translation>
    </message>
    <message>
        <source>Standard, crystal and energy-shift map</source>
        <translation>標準試料・分光結晶の選択とエネルギーシフトマップの作成</translation>
    </message>
    <message>
        <source>References, fits (LCF, MLCF), residual absorption and the choice of the result shown</source>
        <translation>参照スペクトルの選択、フィット (LCF、MLCF)、残留吸収、表示する結果の選択</translation>
    </message>
    <message>
        <source>Load the I1 frames first.</source>
        <translation>先に I1 のフレームを読み込んでください。</translation>
    </message>
    <message>
        <source>Write and run a list of commands</source>
        <translation>コマンドを並べたバッチの編集と実行</translation>
    </message>
    <message>
        <source>Save with Colour Bar</source>
        <translation>カラーバー付きで保存</translation>
    </message>
    <message>
        <source>Save the image on display as a picture with its colour bar, title and unit</source>
        <translation>表示中の画像を、カラーバー・表題・単位とともに画像ファイルに保存します</translation>
    </message>
    <message>
        <source>Save All Maps</source>
        <translation>全マップを保存</translation>
    </message>
    <message>
        <source>Save the values of every map that there is, each in a file of its own name</source>
        <translation>すべてのマップの値を、それぞれの名前のファイルに保存します</translation>
    </message>
    <message>
        <source>Open
Folder</source>
        <translation>フォルダー
を開く</translation>
    </message>
    <message>
        <source>Open Folder</source>
        <translation>フォルダーを開く</translation>
    </message>
    <message>
        <source>Open a measurement by its folder: finds I1, I0, dark frames and references. A folder can be dropped on the window, too.</source>
        <translation>測定をフォルダーごと開きます。I1、I0、ダーク、参照スペクトルを見つけて読み込みます。フォルダーをウィンドウにドロップしても開けます。</translation>
    </message>
    <message>
        <source>Start &amp;Layout</source>
        <translation>初期レイアウト(&amp;L)</translation>
    </message>
    <message>
        <source>Put all windows where they were when the program was new</source>
        <translation>すべてのウィンドウを初回起動時の配置に戻します</translation>
    </message>
    <message>
        <source>The energy-shift map has been cleared</source>
        <translation>エネルギーシフトマップを消去しました</translation>
    </message>
</context>
<context>
    <name>BodyMenu</name>
    <message>
        <source>&amp;File</source>
        <translation>ファイル(&amp;F)</translation>
    </message>
    <message>
        <source>Open &amp;I1 Files...</source>
        <translation>I1 ファイルを開く(&amp;I)...</translation>
    </message>
    <message>
        <source>Open I&amp;0 Files...</source>
        <translation>I0 ファイルを開く(&amp;0)...</translation>
    </message>
    <message>
        <source>&amp;Dark Data...</source>
        <translation>ダークデータ(&amp;D)...</translation>
    </message>
    <message>
        <source>&amp;Save Image...</source>
        <translation>画像を保存(&amp;S)...</translation>
    </message>
    <message>
        <source>Save &amp;All Images...</source>
        <translation>全画像を保存(&amp;A)...</translation>
    </message>
    <message>
        <source>Save Da&amp;ta...</source>
        <translation>データを保存(&amp;T)...</translation>
    </message>
    <message>
        <source>Save S&amp;pectra...</source>
        <translation>スペクトルを保存(&amp;P)...</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>終了(&amp;Q)</translation>
    </message>
    <message>
        <source>&amp;Show</source>
        <translation>表示(&amp;V)</translation>
    </message>
    <message>
        <source>&amp;Data</source>
        <translation>I1 データ(&amp;D)</translation>
    </message>
    <message>
        <source>&amp;I0</source>
        <translation>I0(&amp;I)</translation>
    </message>
    <message>
        <source>Energy &amp;Shift</source>
        <translation>エネルギーシフト(&amp;S)</translation>
    </message>
    <message>
        <source>&amp;Result of Analysis</source>
        <translation>解析結果(&amp;R)</translation>
    </message>
    <message>
        <source>&amp;Previous Frame</source>
        <translation>前のフレーム(&amp;P)</translation>
    </message>
    <message>
        <source>&amp;Next Frame</source>
        <translation>次のフレーム(&amp;N)</translation>
    </message>
    <message>
        <source>&amp;Whole Image</source>
        <translation>画像全体(&amp;W)</translation>
    </message>
    <message>
        <source>&amp;Windows</source>
        <translation>ウィンドウ(&amp;W)</translation>
    </message>
    <message>
        <source>&amp;Spectrum</source>
        <translation>スペクトル(&amp;S)</translation>
    </message>
    <message>
        <source>&amp;Calibration</source>
        <translation>エネルギー校正(&amp;C)</translation>
    </message>
    <message>
        <source>&amp;Analyzer</source>
        <translation>解析(&amp;A)</translation>
    </message>
    <message>
        <source>&amp;Batch</source>
        <translation>バッチ(&amp;B)</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>ヘルプ(&amp;H)</translation>
    </message>
    <message>
        <source>&amp;About Tarnwick</source>
        <translation>Tarnwick について(&amp;A)</translation>
    </message>
    <message>
        <source>About Tarnwick</source>
        <translation>Tarnwick について</translation>
    </message>
    <message>
        <source>Two-dimensional XAFS imaging: spectra, energy calibration and maps of chemical states.</source>
        <translation>二次元 XAFS イメージング: スペクトル抽出、エネルギー校正、化学状態マップ</translation>
    </message>
    <message>
        <source>&amp;User Guide</source>
        <translation>ユーザーガイド(&amp;U)</translation>
    </message>
    <message>
        <source>&amp;Process</source>
        <translation>処理(&amp;P)</translation>
    </message>
    <message>
        <source>&amp;Calibrate the Area, or Stop</source>
        <translation>選択領域をエネルギー校正／中止(&amp;C)</translation>
    </message>
    <message>
        <source>&amp;Fit the Area (LCF, MLCF), or Stop</source>
        <translation>選択領域をフィット (LCF、MLCF)／中止(&amp;F)</translation>
    </message>
    <message>
        <source>&amp;Residual Absorption of the Area, or Stop</source>
        <translation>選択領域の残留吸収／中止(&amp;R)</translation>
    </message>
    <message>
        <source>&amp;Deglitch the Map</source>
        <translation>マップのグリッチ除去(&amp;D)</translation>
    </message>
    <message>
        <source>Show &amp;Processed or Original Values</source>
        <translation>処理後／元の値の表示切り替え(&amp;P)</translation>
    </message>
    <message>
        <source>Deglitch the Energy &amp;Shifts</source>
        <translation>エネルギーシフトのグリッチ除去(&amp;S)</translation>
    </message>
    <message>
        <source>&amp;Form of Saved Data</source>
        <translation>データの保存形式(&amp;F)</translation>
    </message>
    <message>
        <source>&amp;Mouse and Keys</source>
        <translation>マウスとキーの操作(&amp;M)</translation>
    </message>
    <message>
        <source>Save with Colour &amp;Bar...</source>
        <translation>カラーバー付きで保存(&amp;B)...</translation>
    </message>
    <message>
        <source>&amp;Messages</source>
        <translation>メッセージ(&amp;M)</translation>
    </message>
    <message>
        <source>&amp;Fit a Spectrum File...</source>
        <translation>スペクトルファイルをフィット(&amp;F)...</translation>
    </message>
    <message>
        <source>Save All &amp;Maps...</source>
        <translation>全マップを保存(&amp;M)...</translation>
    </message>
    <message>
        <source>D&amp;ifference of Two Energies, or Stop</source>
        <translation>選択領域の 2 エネルギー間の差／中止(&amp;I)</translation>
    </message>
    <message>
        <source>&amp;Mask the Maps of a Fit, or Not</source>
        <translation>フィットのマップのマスク切り替え(&amp;M)</translation>
    </message>
    <message>
        <source>Open F&amp;older...</source>
        <translation>フォルダーを開く(&amp;O)...</translation>
    </message>
    <message>
        <source>S&amp;tatistics of the Area</source>
        <translation>領域の統計(&amp;T)</translation>
    </message>
    <message>
        <source>Pl&amp;ay the Frames, or Stop</source>
        <translation>フレームを再生／停止(&amp;A)</translation>
    </message>
</context>
<context>
    <name>CalibCtrl</name>
    <message>
        <source>Calibration</source>
        <translation>エネルギー校正</translation>
    </message>
    <message>
        <source>Standard</source>
        <translation>標準試料</translation>
    </message>
    <message>
        <source>Select Std.</source>
        <translation>標準試料を選択</translation>
    </message>
    <message>
        <source>Choose the file with the standard spectrum, for example of a metal foil.</source>
        <translation>標準試料のスペクトル (金属箔など) のファイルを選びます。</translation>
    </message>
    <message>
        <source>Background</source>
        <translation>バックグラウンド</translation>
    </message>
    <message>
        <source>Straight lines (Simple) suit spectra that end near the edge; Victreen curves need a long range on both sides.</source>
        <translation>吸収端の近くだけのスペクトルには直線が適します。Victreen には吸収端の前後に長い範囲が必要です。</translation>
    </message>
    <message>
        <source>Std. :</source>
        <translation>標準試料 :</translation>
    </message>
    <message>
        <source>Simple</source>
        <translation>直線</translation>
    </message>
    <message>
        <source>Victreen</source>
        <translation>Victreen</translation>
    </message>
    <message>
        <source>Target :</source>
        <translation>試料 :</translation>
    </message>
    <message>
        <source>Energy</source>
        <translation>エネルギー</translation>
    </message>
    <message>
        <source>Crystal</source>
        <translation>結晶</translation>
    </message>
    <message>
        <source>Monochromator crystal: its d-spacing turns shifts into angles when the map is saved.</source>
        <translation>分光結晶。マップの保存時に面間隔を使ってシフトを角度に変換します。</translation>
    </message>
    <message>
        <source>Edge</source>
        <translation>吸収端</translation>
    </message>
    <message>
        <source>Edge energy with which a map is loaded. Filled in by the standard; empty or 0: the energy in the map file.</source>
        <translation>マップの読み込みに使う吸収端エネルギー。標準試料を読み込むと入力されます。空または 0 のときはマップファイルの値を使います。</translation>
    </message>
    <message>
        <source>from the map file</source>
        <translation>マップファイルの値</translation>
    </message>
    <message>
        <source>Energy-Shift Map</source>
        <translation>エネルギーシフトマップ</translation>
    </message>
    <message>
        <source>Exec Calib.</source>
        <translation>校正を実行</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>Load</source>
        <translation>読み込み</translation>
    </message>
    <message>
        <source>Load a saved energy-shift map of the image&apos;s size. Only maps of square images can be loaded.</source>
        <translation>画像と同じ大きさの保存済みマップを読み込みます。読み込めるのは正方形の画像のマップだけです。</translation>
    </message>
    <message>
        <source>Clear Map</source>
        <translation>マップ消去</translation>
    </message>
    <message>
        <source>Forget the map: no spectrum is shifted.</source>
        <translation>マップを破棄します。スペクトルはシフトされなくなります。</translation>
    </message>
    <message>
        <source>Save Energy-Shift Map</source>
        <translation>エネルギーシフトマップの保存</translation>
    </message>
    <message>
        <source>Load Energy-Shift Map</source>
        <translation>エネルギーシフトマップの読み込み</translation>
    </message>
    <message>
        <source>Energy Distribution Map File (*.emp)</source>
        <translation>エネルギー分布マップ (*.emp)</translation>
    </message>
    <message>
        <source>Any Files (* *.*)</source>
        <translation>すべてのファイル (* *.*)</translation>
    </message>
    <message>
        <source>No standard loaded</source>
        <translation>標準試料は未選択です</translation>
    </message>
    <message>
        <source>No standard is loaded. Choose one with &quot;Select Std.&quot;.</source>
        <translation>標準試料が読み込まれていません。「標準試料を選択」で選んでください。</translation>
    </message>
    <message>
        <source>Without one the map holds edge energies, not shifts.</source>
        <translation>標準試料がないと、マップにはシフトではなく吸収端エネルギーが入ります。</translation>
    </message>
    <message>
        <source>Save the energy-shift map as angles for this standard and crystal.</source>
        <translation>この標準試料と結晶での角度としてエネルギーシフトマップを保存します。</translation>
    </message>
    <message>
        <source>Without one the map is saved with the edge energy typed above.</source>
        <translation>標準試料がないと、上に入力した吸収端エネルギーで保存します。</translation>
    </message>
    <message>
        <source>Victreen curves need a long range on both sides of the edge.</source>
        <translation>Victreen は吸収端の両側に広いエネルギー範囲が必要です。</translation>
    </message>
    <message>
        <source>There is no energy-shift map yet.</source>
        <translation>エネルギーシフトマップがまだありません。</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>中止</translation>
    </message>
    <message>
        <source>Measure the energy shift of every bin of the selected area against the standard; a second click stops.</source>
        <translation>選択領域のすべてのビンについて、標準試料に対するエネルギーシフトを求めます。もう一度押すと中止します。</translation>
    </message>
    <message>
        <source>E0 :</source>
        <translation>E0 :</translation>
    </message>
    <message>
        <source>Energy around which the curves of the image&apos;s spectra are fitted: where each bin rises itself, where the mean spectrum of the area does, or the energy beside. One for all keeps bins with little of the element from going wild.</source>
        <translation>試料スペクトルのバックグラウンドを決める基準のエネルギー。ビンごとの吸収端、領域の平均スペクトルの吸収端、または右の値です。共通の E0 にすると、その元素が少ないビンでも値が暴れません。</translation>
    </message>
    <message>
        <source>Each bin</source>
        <translation>ビンごと</translation>
    </message>
    <message>
        <source>Mean spectrum</source>
        <translation>平均スペクトル</translation>
    </message>
    <message>
        <source>E0 of all spectra, in eV of the calibrated scale</source>
        <translation>すべてのスペクトルの E0 (校正後のエネルギー、eV)</translation>
    </message>
    <message>
        <source>Ranges :</source>
        <translation>範囲 :</translation>
    </message>
    <message>
        <source>Range of the curve below the edge, in eV from E0, for image, references and standard</source>
        <translation>吸収端の前のバックグラウンドの範囲 (E0 から、eV)。試料、参照スペクトル、標準試料に使います</translation>
    </message>
    <message>
        <source>Range of the curve above the edge, in eV from E0, for image, references and standard. Beginning 20 to 40 eV above E0 keeps the structure of the edge out of the line.</source>
        <translation>吸収端の後のバックグラウンドの範囲 (E0 から、eV)。試料、参照スペクトル、標準試料に使います。E0 の 20 ～ 40 eV 上から始めると、吸収端の微細構造が直線に入りません。</translation>
    </message>
    <message>
        <source>Tiff Files (*.tif *.tiff)</source>
        <translation>TIFF ファイル (*.tif *.tiff)</translation>
    </message>
    <message>
        <source>E0 needs an energy above 0 eV in its field</source>
        <translation>E0 の欄に 0 eV より大きいエネルギーを入力してください</translation>
    </message>
    <message>
        <source>The ranges do not ascend: %1 to %2 and %3 to %4 eV stay in force</source>
        <translation>範囲が昇順ではないため、%1 ～ %2 eV と %3 ～ %4 eV のままにします</translation>
    </message>
    <message>
        <source>The ranges are no numbers: %1 to %2 and %3 to %4 eV stay in force</source>
        <translation>範囲が数値ではありません: %1～%2 と %3～%4 eV のままです</translation>
    </message>
    <message>
        <source>Standard: Simple</source>
        <translation>標準試料: 直線</translation>
    </message>
    <message>
        <source>Standard: Victreen</source>
        <translation>標準試料: Victreen</translation>
    </message>
    <message>
        <source>Target: Simple</source>
        <translation>試料: 直線</translation>
    </message>
    <message>
        <source>Target: Victreen</source>
        <translation>試料: Victreen</translation>
    </message>
    <message>
        <source>E0 in eV</source>
        <translation>E0 (eV)</translation>
    </message>
    <message>
        <source>Begin of the range below the edge</source>
        <translation>吸収端の前の範囲の始まり</translation>
    </message>
    <message>
        <source>End of the range below the edge</source>
        <translation>吸収端の前の範囲の終わり</translation>
    </message>
    <message>
        <source>Begin of the range above the edge</source>
        <translation>吸収端の後の範囲の始まり</translation>
    </message>
    <message>
        <source>End of the range above the edge</source>
        <translation>吸収端の後の範囲の終わり</translation>
    </message>
    <message>
        <source>Save the energy-shift map</source>
        <translation>エネルギーシフトマップを保存</translation>
    </message>
    <message>
        <source>Load an energy-shift map</source>
        <translation>エネルギーシフトマップを読み込み</translation>
    </message>
    <message>
        <source>Standard %1: edge at %2 eV</source>
        <translation>標準試料 %1: 吸収端 %2 eV</translation>
    </message>
</context>
<context>
    <name>Calibration</name>
    <message>
        <source>%1 of %2 bins without an edge</source>
        <translation>吸収端のないビン %1 / %2</translation>
    </message>
    <message>
        <source>Energy shifts from %1 to %2 eV, mean %3 eV; %4</source>
        <translation>エネルギーシフト %1 ～ %2 eV、平均 %3 eV。%4</translation>
    </message>
    <message>
        <source>Edge energies from %1 to %2 eV, mean %3 eV; %4</source>
        <translation>吸収端エネルギー %1 ～ %2 eV、平均 %3 eV。%4</translation>
    </message>
    <message>
        <source>no standard: the map holds edge energies, not shifts</source>
        <translation>標準試料がないため、マップの値はシフトではなく吸収端エネルギーです</translation>
    </message>
    <message>
        <source>the standard has no rising edge to compare with</source>
        <translation>標準試料に比較できる吸収端の立ち上がりがありません</translation>
    </message>
    <message>
        <source>the standard&apos;s edge at %1 eV lies outside the frames&apos; energies, %2 to %3 eV</source>
        <translation>標準試料の吸収端 %1 eV がフレームのエネルギー範囲 %2 ～ %3 eV の外にあります</translation>
    </message>
    <message>
        <source>%1 of %2 bins have no edge</source>
        <translation>%2 ビン中 %1 ビンに吸収端がありません</translation>
    </message>
    <message>
        <source>most shifts are above %1 eV: the standard may be another element&apos;s</source>
        <translation>シフトの大半が %1 eV を超えています。標準試料が別の元素かもしれません</translation>
    </message>
    <message>
        <source>cannot be read: %1</source>
        <translation>読み込めません: %1</translation>
    </message>
    <message>
        <source>not of the images&apos; size: %1</source>
        <translation>画像とサイズが違います: %1</translation>
    </message>
    <message>
        <source>spacing or edge energy missing or absurd: %1</source>
        <translation>格子面間隔または吸収端エネルギーがないか、ありえない値です: %1</translation>
    </message>
    <message>
        <source>Loaded %1</source>
        <translation>読み込みました: %1</translation>
    </message>
    <message>
        <source>%1 of %2 values are missing and count as no shift: %3</source>
        <translation>%2 個中 %1 個の値が欠けているため、シフトなしとみなします: %3</translation>
    </message>
    <message>
        <source>%1 values are no numbers and count as no shift: %2</source>
        <translation>%1 個の値が数値でないため、シフトなしとみなします: %2</translation>
    </message>
    <message>
        <source>more values than the %1 of the map: %2</source>
        <translation>値がマップの画素数 (%1) より多くあります: %2</translation>
    </message>
    <message>
        <source>no images are loaded</source>
        <translation>画像が読み込まれていません</translation>
    </message>
    <message>
        <source>only maps of square images load from .emp; a float TIFF takes any shape</source>
        <translation>.emp から読み込めるのは正方形の画像のマップだけです。浮動小数点 TIFF ならどの形でも保存できます</translation>
    </message>
    <message>
        <source>not an energy map: %1</source>
        <translation>エネルギーマップではありません: %1</translation>
    </message>
    <message>
        <source>holds a shift that is no number or above 1000 eV: %1</source>
        <translation>数値でないシフト、または 1000 eV を超えるシフトが含まれています: %1</translation>
    </message>
    <message>
        <source>no program could load the map: no standard and no edge energy that the crystal reflects</source>
        <translation>保存しても読み込めないマップです: 標準試料も、結晶で反射できる吸収端エネルギーもありません</translation>
    </message>
    <message>
        <source>no program could load the map: it holds shifts above 1000 eV, or beyond what the crystal reflects</source>
        <translation>保存しても読み込めないマップです: 1000 eV を超えるシフト、または結晶で反射できないシフトが含まれています</translation>
    </message>
    <message>
        <source>only maps of square images load from .emp: %1</source>
        <translation>.emp から読み込めるのは正方形の画像のマップだけです: %1</translation>
    </message>
    <message>
        <source>there is no energy map</source>
        <translation>エネルギーマップがありません</translation>
    </message>
    <message>
        <source>no program could load the map: it holds shifts above 1000 eV</source>
        <translation>保存しても読み込めないマップです: 1000 eV を超えるシフトがあります</translation>
    </message>
</context>
<context>
    <name>ColorBar</name>
    <message>
        <source>Auto</source>
        <translation>自動</translation>
    </message>
    <message>
        <source>Fixed</source>
        <translation>固定</translation>
    </message>
    <message>
        <source>Percentile 1-99</source>
        <translation>1-99 パーセンタイル</translation>
    </message>
    <message>
        <source>Whole range</source>
        <translation>全範囲</translation>
    </message>
    <message>
        <source>Each frame&apos;s own</source>
        <translation>フレームごと (自動)</translation>
    </message>
    <message>
        <source>Colour bar</source>
        <translation>カラーバー</translation>
    </message>
    <message>
        <source>End of the range</source>
        <translation>表示範囲の端の値</translation>
    </message>
    <message>
        <source>Drag an end or click on its value to fix the range of these maps, turn the wheel to widen or narrow it; right click for other ranges and colours, double click for percentiles 1-99</source>
        <translation>端をドラッグするか値をクリックして、この種類のマップの表示範囲を固定します。ホイールで広げたり狭めたりできます。右クリックでほかの範囲と配色、ダブルクリックで 1-99 パーセンタイル</translation>
    </message>
    <message>
        <source>Drag an end or click on its value to fix the range, turn the wheel to widen or narrow it; right click for more, double click for each frame&apos;s own</source>
        <translation>端をドラッグするか値をクリックして表示範囲を固定します。ホイールで広げたり狭めたりできます。右クリックでほかの操作、ダブルクリックでフレームごと (自動)</translation>
    </message>
    <message>
        <source>Analyzer</source>
        <translation>解析</translation>
    </message>
    <message>
        <source>Stated</source>
        <translation>既定</translation>
    </message>
    <message>
        <source>Full</source>
        <translation>全範囲</translation>
    </message>
    <message>
        <source>1-99 %</source>
        <translation>1-99 %</translation>
    </message>
    <message>
        <source>From %1 to %2</source>
        <translation>%1 ～ %2</translation>
    </message>
    <message>
        <source>Percentiles 1-99</source>
        <translation>1-99 パーセンタイル</translation>
    </message>
    <message>
        <source>Full range</source>
        <translation>全範囲</translation>
    </message>
    <message>
        <source>Fixed at these limits</source>
        <translation>現在の範囲で固定</translation>
    </message>
    <message>
        <source>As batches draw it</source>
        <translation>バッチの描画と同じ (既定)</translation>
    </message>
    <message>
        <source>Reversed</source>
        <translation>反転</translation>
    </message>
</context>
<context>
    <name>ColorScale</name>
    <message>
        <source>Grey</source>
        <translation>グレー</translation>
    </message>
    <message>
        <source>Black, red, yellow, white</source>
        <translation>黒・赤・黄・白</translation>
    </message>
    <message>
        <source>Viridis</source>
        <translation>Viridis</translation>
    </message>
    <message>
        <source>Cividis</source>
        <translation>Cividis</translation>
    </message>
    <message>
        <source>Inferno</source>
        <translation>Inferno</translation>
    </message>
    <message>
        <source>Blue, white, red about 0 (vik)</source>
        <translation>0 を中心に青・白・赤 (vik)</translation>
    </message>
</context>
<context>
    <name>Composite</name>
    <message>
        <source>the result is %1</source>
        <translation>注意: %1です</translation>
    </message>
    <message>
        <source>no reference is chosen</source>
        <translation>参照スペクトルが選ばれていません</translation>
    </message>
    <message>
        <source>no reference panel %1</source>
        <translation>参照スペクトルの行 %1 はありません</translation>
    </message>
    <message>
        <source>reference %1 has two colours</source>
        <translation>参照スペクトル %1 に 2 つの色が割り当てられています</translation>
    </message>
    <message>
        <source>there is no map of the fraction of reference %1</source>
        <translation>参照スペクトル %1 の割合のマップがありません</translation>
    </message>
</context>
<context>
    <name>CompositeDialog</name>
    <message>
        <source>Composite</source>
        <translation>合成画像</translation>
    </message>
    <message>
        <source>&amp;Red</source>
        <translation>赤(&amp;R)</translation>
    </message>
    <message>
        <source>&amp;Green</source>
        <translation>緑(&amp;G)</translation>
    </message>
    <message>
        <source>&amp;Blue</source>
        <translation>青(&amp;B)</translation>
    </message>
    <message>
        <source>none</source>
        <translation>なし</translation>
    </message>
    <message>
        <source>&amp;Composite...</source>
        <translation>合成画像(&amp;C)...</translation>
    </message>
    <message>
        <source>Up to three references as red, green and blue in one picture</source>
        <translation>参照スペクトル 3 つまでの割合を、赤・緑・青として 1 枚の画像に表示します</translation>
    </message>
    <message>
        <source>There are no results of a fit yet.</source>
        <translation>フィットの結果がまだありません。</translation>
    </message>
</context>
<context>
    <name>Controls</name>
    <message>
        <source>Show a result image or the energy-shift map first.</source>
        <translation>先に結果画像かエネルギーシフトマップを表示してください。</translation>
    </message>
    <message>
        <source>Make or load an energy-shift map first.</source>
        <translation>先にエネルギーシフトマップを作成するか読み込んでください。</translation>
    </message>
    <message>
        <source>There is no image on display yet.</source>
        <translation>まだ画像が表示されていません。</translation>
    </message>
    <message>
        <source>Analyze the image with references first.</source>
        <translation>先に参照スペクトルを使って画像を解析してください。</translation>
    </message>
    <message>
        <source>Select a finished result in the Analyzer, or show the energy-shift map, first.</source>
        <translation>先に解析パネルで結果を選択するか、エネルギーシフトマップを表示してください。</translation>
    </message>
    <message>
        <source>Point at the image first, to form a spectrum.</source>
        <translation>先に画像上にカーソルを置いてスペクトルを表示してください。</translation>
    </message>
    <message>
        <source>%1.</source>
        <translation>%1。</translation>
    </message>
    <message>
        <source>Analyze the image, or make or load an energy-shift map, first.</source>
        <translation>先に画像を解析するか、エネルギーシフトマップを作成または読み込んでください。</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>中止</translation>
    </message>
</context>
<context>
    <name>CrossSection</name>
    <message>
        <source>Values along the row of the position, mean over the bin&apos;s height</source>
        <translation>カーソル位置の行に沿った値 (ビンの高さで平均)</translation>
    </message>
    <message>
        <source>Values along the column of the position, mean over the bin&apos;s width</source>
        <translation>カーソル位置の列に沿った値 (ビンの幅で平均)</translation>
    </message>
</context>
<context>
    <name>CursorNumbers</name>
    <message>
        <source>Value of the shown map at the position and its error, one sigma</source>
        <translation>表示中のマップのカーソル位置での値と誤差 (1 シグマ)</translation>
    </message>
    <message>
        <source>R factor and reduced chi-square of the fit of the bin at the position</source>
        <translation>カーソル位置のビンのフィットの R 因子と換算カイ二乗</translation>
    </message>
    <message>
        <source>R  %1
χ² red.  %2</source>
        <translation>R  %1
χ²/ν  %2</translation>
    </message>
</context>
<context>
    <name>Dark</name>
    <message>
        <source>Clear Dark Data</source>
        <translation>ダークデータを消去</translation>
    </message>
    <message>
        <source>Dark Data</source>
        <translation>ダークデータ</translation>
    </message>
    <message>
        <source>Tiff Files (*.tif *.tiff)</source>
        <translation>TIFF ファイル (*.tif *.tiff)</translation>
    </message>
    <message>
        <source>IMG Files (*.img)</source>
        <translation>IMG ファイル (*.img)</translation>
    </message>
    <message>
        <source>Any Files (* *.*)</source>
        <translation>すべてのファイル (* *.*)</translation>
    </message>
</context>
<context>
    <name>Difference</name>
    <message>
        <source>of earlier frames</source>
        <translation>以前のフレームの結果</translation>
    </message>
    <message>
        <source>with other dark frames</source>
        <translation>別のダークフレームでの結果</translation>
    </message>
    <message>
        <source>before the energy calibration</source>
        <translation>エネルギー校正前の結果</translation>
    </message>
    <message>
        <source>with earlier references</source>
        <translation>以前の参照スペクトルでの結果</translation>
    </message>
    <message>
        <source>with other bins</source>
        <translation>別のビンでの結果</translation>
    </message>
    <message>
        <source>of another area</source>
        <translation>別の領域の結果</translation>
    </message>
    <message>
        <source>with another background</source>
        <translation>別のバックグラウンドでの結果</translation>
    </message>
    <message>
        <source>with other settings</source>
        <translation>別の設定での結果</translation>
    </message>
    <message>
        <source>stopped at %1 %</source>
        <translation>%1 % で中止</translation>
    </message>
    <message>
        <source>of the run before</source>
        <translation>前回の実行の結果</translation>
    </message>
    <message>
        <source>with another E0</source>
        <translation>別の E0 での結果</translation>
    </message>
    <message>
        <source>with other background ranges</source>
        <translation>別のバックグラウンド範囲での結果</translation>
    </message>
</context>
<context>
    <name>EdgeJudgement</name>
    <message>
        <source>the background ranges (%1) hold fewer than 3 energies of the frames, wherever E0 is</source>
        <translation>E0 がどこにあっても、バックグラウンドの範囲 (%1) に入るフレームのエネルギーが 3 個に足りません</translation>
    </message>
    <message>
        <source>E0 at %1 eV lies outside the energies of the frames, %2 to %3 eV</source>
        <translation>E0 (%1 eV) がフレームのエネルギー範囲 %2 ～ %3 eV の外にあります</translation>
    </message>
    <message>
        <source>with the shifts of the energy map, E0 lies outside the energies of the frames in %1 of %2 bins</source>
        <translation>エネルギーマップのシフトにより、%2 ビン中 %1 ビンで E0 がフレームのエネルギー範囲の外にあります</translation>
    </message>
    <message>
        <source>the background ranges (%1) around E0 at %2 eV hold fewer than 3 energies of the frames</source>
        <translation>E0 (%2 eV) から見たバックグラウンドの範囲 (%1) に入るフレームのエネルギーが 3 個に足りません</translation>
    </message>
    <message>
        <source>the background ranges hold fewer than 3 energies of the frames in %1 of %2 bins</source>
        <translation>%2 ビン中 %1 ビンで、バックグラウンドの範囲に入るフレームのエネルギーが 3 個に足りません</translation>
    </message>
    <message>
        <source>the background ranges (%1) hold fewer than 3 energies of the frames in all bins</source>
        <translation>バックグラウンドの範囲 (%1) に含まれるフレームのエネルギーが、すべてのビンで 3 個未満です</translation>
    </message>
</context>
<context>
    <name>FileState</name>
    <message>
        <source>%1: has gone since it was loaded</source>
        <translation>%1: 読み込みの後でなくなりました</translation>
    </message>
    <message>
        <source>%1: has changed since it was loaded</source>
        <translation>%1: 読み込みの後で変更されました</translation>
    </message>
</context>
<context>
    <name>FileWait</name>
    <message>
        <source>Give Up</source>
        <translation>あきらめる</translation>
    </message>
    <message>
        <source>Go on without the file (Esc)</source>
        <translation>このファイルなしで続けます (Esc)</translation>
    </message>
    <message>
        <source>Waiting for %1</source>
        <translation>%1 の応答を待っています</translation>
    </message>
</context>
<context>
    <name>FitJudgement</name>
    <message>
        <source>%1 to %2 eV</source>
        <translation>%1 ～ %2 eV</translation>
    </message>
    <message>
        <source>%1 covers %2</source>
        <translation>%1 の範囲は %2</translation>
    </message>
    <message>
        <source>%1 and %2 cannot be told apart by the fit</source>
        <translation>%1 と %2 はフィットで区別できません</translation>
    </message>
    <message>
        <source>no reference is in use</source>
        <translation>使用する参照スペクトルがありません</translation>
    </message>
    <message>
        <source>%1 of %2 energies of the frames (%3) lie inside all references, the fit needs %4</source>
        <translation>フレームの %2 個のエネルギー (%3) のうち、すべての参照スペクトルの範囲に入るのは %1 個で、フィットに必要な %4 個に足りません</translation>
    </message>
    <message>
        <source>only %1 of %2 energies of the frames (%3) were used: %4</source>
        <translation>フレームの %2 個のエネルギー (%3) のうち %1 個だけを使いました: %4</translation>
    </message>
    <message>
        <source>the energy %1 eV of the residual absorption lies outside those of the frames (%2)</source>
        <translation>残留吸収のエネルギー %1 eV がフレームのエネルギー範囲 (%2) の外にあります</translation>
    </message>
    <message>
        <source>%1 of %2 bins have no counts at some energy</source>
        <translation>%2 ビン中 %1 ビンに、カウントのないエネルギーがあります</translation>
    </message>
    <message>
        <source>%1 is normalised with %2 curves, the image with %3 ones</source>
        <translation>%1 は %2 曲線、画像は %3 曲線で規格化されています</translation>
    </message>
    <message>
        <source>with the shifts of the energy map, %1 of %2 bins have too few energies inside the references</source>
        <translation>エネルギーマップのシフトでは、%2 個中 %1 個のビンで参照スペクトルの範囲内のエネルギーが不足しています</translation>
    </message>
    <message>
        <source>reference %1 (Ref%2) is in use but holds no spectrum: left out</source>
        <translation>参照スペクトル %1 (参照 %2 の行) は「使用」ですがスペクトルがないため除外しました</translation>
    </message>
    <message>
        <source>%1 of %2 energies of the spectrum (%3) lie inside all references, the fit needs %4</source>
        <translation>スペクトルの %2 個のエネルギー (%3) のうち、すべての参照スペクトルの範囲に入るのは %1 個で、フィットに必要な %4 個に足りません</translation>
    </message>
    <message>
        <source>only %1 of %2 energies of the spectrum (%3) were used: %4</source>
        <translation>スペクトルの %2 個のエネルギー (%3) のうち %1 個だけを使いました: %4</translation>
    </message>
    <message>
        <source>%1 is normalised with %2 curves, the sample with %3 ones</source>
        <translation>%1 は %2 曲線、試料は %3 曲線で規格化されています</translation>
    </message>
    <message>
        <source>constraints are for at most %1 references, not for %2</source>
        <translation>制約を使えるのは参照スペクトル %1 個までです (現在 %2 個)</translation>
    </message>
    <message>
        <source>MLCF has no sum of 1: its coefficients are edge jumps</source>
        <translation>MLCF の係数はエッジジャンプのため、合計を 1 にする制約はありません</translation>
    </message>
    <message>
        <source>no mask without error maps: run again with error maps</source>
        <translation>誤差マップがないためマスクできません。誤差マップ付きで解析し直してください</translation>
    </message>
    <message>
        <source>the frames have one energy only</source>
        <translation>フレームのエネルギーが 1 つしかありません</translation>
    </message>
    <message>
        <source>the energy %1 eV lies outside those of the frames (%2)</source>
        <translation>エネルギー %1 eV がフレームのエネルギー範囲 (%2) の外にあります</translation>
    </message>
    <message>
        <source>the two energies of the difference are the same</source>
        <translation>差をとる 2 つのエネルギーが同じです</translation>
    </message>
</context>
<context>
    <name>FolderContents</name>
    <message>
        <source>named as frames of two kinds, not taken: %1</source>
        <translation>名前が 2 種類のフレームに当てはまるため、読み込みません: %1</translation>
    </message>
    <message>
        <source>there is no frame in %1</source>
        <translation>%1 にフレームがありません</translation>
    </message>
    <message>
        <source>no such folder: %1</source>
        <translation>フォルダーがありません: %1</translation>
    </message>
    <message>
        <source>no frames are named as I1, I0 or dark in %1</source>
        <translation>%1 に I1、I0、ダークの名前のフレームがありません</translation>
    </message>
    <message>
        <source>no I1 frames in %1</source>
        <translation>%1 に I1 のフレームがありません</translation>
    </message>
    <message>
        <source>frames not taken: %1</source>
        <translation>読み込まないフレーム: %1</translation>
    </message>
    <message>
        <source>neither frames nor spectra: %1</source>
        <translation>フレームでもスペクトルでもありません: %1</translation>
    </message>
    <message>
        <source>1 file</source>
        <translation>1 ファイル</translation>
    </message>
    <message>
        <source>%1 files</source>
        <translation>%1 ファイル</translation>
    </message>
    <message>
        <source>%1 eV</source>
        <translation>%1 eV</translation>
    </message>
    <message>
        <source>%1 to %2 eV</source>
        <translation>%1 ～ %2 eV</translation>
    </message>
    <message numerus="yes">
        <source>%1 and %n more</source>
        <translation>
            <numerusform>%1 ほか %n 個</numerusform>
        </translation>
    </message>
    <message>
        <source>saved by this program</source>
        <translation>このプログラムで保存したファイルです</translation>
    </message>
    <message>
        <source>%1, the frames %2</source>
        <translation>エネルギー範囲が %1 で、フレームは %2 です</translation>
    </message>
    <message>
        <source>no reference: %1</source>
        <translation>参照スペクトルではありません: %1</translation>
    </message>
    <message>
        <source>further standards, not taken: %1</source>
        <translation>標準試料の候補がほかにもあります。読み込まなかったもの: %1</translation>
    </message>
    <message>
        <source>dark</source>
        <translation>ダーク</translation>
    </message>
    <message>
        <source>%1: not taken: %2: %3</source>
        <translation>%1: 読み込みませんでした: %2: %3</translation>
    </message>
    <message>
        <source>%1 x %2 pixels, the first frame %3 x %4</source>
        <translation>%1 x %2 画素で、最初のフレームの %3 x %4 と違います</translation>
    </message>
    <message>
        <source>references: %1</source>
        <translation>参照スペクトル: %1</translation>
    </message>
    <message>
        <source>standard: %1</source>
        <translation>標準試料: %1</translation>
    </message>
    <message>
        <source>loaded 1 frame of %1, %2</source>
        <translation>%1 を 1 フレーム読み込みました、%2</translation>
    </message>
    <message>
        <source>loaded %1 frames of %2, %3</source>
        <translation>%2 を %1 フレーム読み込みました、%3</translation>
    </message>
    <message>
        <source>could be meant in place of %1, not taken: %2</source>
        <translation>%1 のほかに候補がありますが、読み込みません: %2</translation>
    </message>
    <message>
        <source>not a folder: %1</source>
        <translation>フォルダーではありません: %1</translation>
    </message>
    <message>
        <source>the folder may not be read: %1</source>
        <translation>フォルダーを読む権限がありません: %1</translation>
    </message>
    <message>
        <source>there is no frame in %1, nor in the folders in it: %2</source>
        <translation>%1 にも、その中のフォルダーにもフレームがありません: %2</translation>
    </message>
    <message>
        <source>may not be read: %1</source>
        <translation>読む権限がありません: %1</translation>
    </message>
</context>
<context>
    <name>FolderDialog</name>
    <message>
        <source>Open Folder</source>
        <translation>フォルダーを開く</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>フォルダー</translation>
    </message>
    <message>
        <source>None</source>
        <translation>なし</translation>
    </message>
    <message>
        <source>I&amp;1</source>
        <translation>I&amp;1</translation>
    </message>
    <message>
        <source>Frames of I1</source>
        <translation>I1 のフレーム</translation>
    </message>
    <message>
        <source>I&amp;0</source>
        <translation>I&amp;0</translation>
    </message>
    <message>
        <source>Frames of I0</source>
        <translation>I0 のフレーム</translation>
    </message>
    <message>
        <source>&amp;Dark</source>
        <translation>ダーク(&amp;D)</translation>
    </message>
    <message>
        <source>Dark frames</source>
        <translation>ダークのフレーム</translation>
    </message>
    <message>
        <source>References</source>
        <translation>参照スペクトル</translation>
    </message>
    <message>
        <source>Those checked are loaded and used in the fit</source>
        <translation>チェックしたものを読み込み、フィットに使います</translation>
    </message>
    <message>
        <source>&amp;References</source>
        <translation>参照スペクトル(&amp;R)</translation>
    </message>
    <message>
        <source>&amp;Standard</source>
        <translation>標準試料(&amp;S)</translation>
    </message>
    <message>
        <source>Standard of the calibration</source>
        <translation>エネルギー校正の標準試料</translation>
    </message>
    <message>
        <source>What was found and not taken</source>
        <translation>見つかったが読み込まないもの</translation>
    </message>
    <message>
        <source>&amp;Load</source>
        <translation>読み込み(&amp;L)</translation>
    </message>
    <message>
        <source>Replace the frames there are, and set and use the references</source>
        <translation>いまのフレームを置き換え、参照スペクトルを設定して使用します</translation>
    </message>
    <message>
        <source>Choose what is to be loaded.</source>
        <translation>読み込むものを選んでください。</translation>
    </message>
    <message>
        <source>The same frames are chosen twice.</source>
        <translation>同じフレームが 2 か所で選ばれています。</translation>
    </message>
</context>
<context>
    <name>FolderOpening</name>
    <message>
        <source>Open Rece&amp;nt</source>
        <translation>最近のフォルダー(&amp;N)</translation>
    </message>
    <message>
        <source>Open Folder</source>
        <translation>フォルダーを開く</translation>
    </message>
    <message>
        <source>no longer there, taken out of the list: %1</source>
        <translation>なくなっているため、一覧から外しました: %1</translation>
    </message>
</context>
<context>
    <name>FrameHeader</name>
    <message>
        <source>%1 x %2 pixels, the images %3 x %4</source>
        <translation>%1 x %2 画素で、画像の %3 x %4 と違います</translation>
    </message>
    <message>
        <source>cannot be opened</source>
        <translation>開けません</translation>
    </message>
    <message>
        <source>an empty file</source>
        <translation>空のファイルです</translation>
    </message>
    <message>
        <source>neither TIFF nor IMG</source>
        <translation>TIFF でも IMG でもありません</translation>
    </message>
    <message>
        <source>an IMG file, whose counts are not read</source>
        <translation>IMG ファイルのカウントは読み込めません</translation>
    </message>
    <message>
        <source>cannot be read</source>
        <translation>読み込めません</translation>
    </message>
    <message>
        <source>damaged: %1 of %2 rows can be decoded</source>
        <translation>壊れています: %2 行中 %1 行しか復号できません</translation>
    </message>
    <message>
        <source>a TIFF file without an image</source>
        <translation>画像のない TIFF ファイルです</translation>
    </message>
    <message>
        <source>%1 samples a pixel, not 1</source>
        <translation>1 画素あたり 1 サンプルではなく %1 サンプルです</translation>
    </message>
    <message>
        <source>signed %1-bit numbers, not counts</source>
        <translation>カウントではなく符号付き %1 ビット値です</translation>
    </message>
    <message>
        <source>%1-bit float, not 16-bit counts</source>
        <translation>16 ビットのカウントではなく %1 ビット浮動小数点です</translation>
    </message>
    <message>
        <source>complex numbers, not counts</source>
        <translation>カウントではなく複素数です</translation>
    </message>
    <message>
        <source>%1 bits a sample, not 16</source>
        <translation>1 サンプルあたり 16 ビットではなく %1 ビットです</translation>
    </message>
    <message>
        <source>an image without pixels</source>
        <translation>画素のない画像です</translation>
    </message>
    <message>
        <source>too large an image</source>
        <translation>画像が大きすぎます</translation>
    </message>
    <message>
        <source>tiled, not in rows</source>
        <translation>行単位ではなくタイル形式です</translation>
    </message>
    <message>
        <source>a compression that is not known (%1)</source>
        <translation>対応していない圧縮形式です (%1)</translation>
    </message>
    <message>
        <source>truncated: %1 of %2 rows</source>
        <translation>途中で切れています: %2 行中 %1 行</translation>
    </message>
    <message>
        <source>a strip is announced longer than the file</source>
        <translation>ストリップの長さがファイルを超えています</translation>
    </message>
    <message>
        <source>its counts are taken as they stand, though 0 is marked as white</source>
        <translation>0 が白と指定されていますが、カウントはそのまま使います</translation>
    </message>
    <message>
        <source>its values are taken as counts, though not marked as such</source>
        <translation>カウントとは指定されていない値をカウントとして使います</translation>
    </message>
    <message>
        <source>only the first of its images is read</source>
        <translation>最初の画像だけを読み込みます</translation>
    </message>
    <message>
        <source>%1-bit integers, not 32-bit float</source>
        <translation>32 ビット浮動小数点ではなく %1 ビット整数です</translation>
    </message>
    <message>
        <source>%1-bit float, not 32-bit float</source>
        <translation>32 ビットではなく %1 ビットの浮動小数点です</translation>
    </message>
    <message>
        <source>%1: cannot be read: %2</source>
        <translation>%1: 読み込めません: %2</translation>
    </message>
    <message>
        <source>%1: has changed since it was loaded</source>
        <translation>%1: 読み込みの後で変更されました</translation>
    </message>
    <message>
        <source>%1: has gone since it was loaded</source>
        <translation>%1: 読み込みの後でなくなりました</translation>
    </message>
    <message>
        <source>%1: is shorter than when it was loaded</source>
        <translation>%1: 読み込んだときより短くなっています</translation>
    </message>
    <message>
        <source>the temporary file for decoded counts in %1: %2</source>
        <translation>展開したカウントの一時ファイル (フォルダー %1): %2</translation>
    </message>
    <message>
        <source>its strips lie over each other</source>
        <translation>ストリップどうしが重なっています</translation>
    </message>
</context>
<context>
    <name>FrameStrip</name>
    <message>
        <source>Previous frame</source>
        <translation>前のフレーム</translation>
    </message>
    <message>
        <source>Frame shown</source>
        <translation>表示中のフレーム</translation>
    </message>
    <message>
        <source>Next frame</source>
        <translation>次のフレーム</translation>
    </message>
    <message>
        <source>Energy of the frame shown; type another and press Enter to go to the frame nearest to it</source>
        <translation>表示中のフレームのエネルギー。別の値を入力して Enter を押すと、最も近いフレームに移ります</translation>
    </message>
    <message>
        <source>Energy of the frame shown in eV</source>
        <translation>表示中のフレームのエネルギー (eV)</translation>
    </message>
    <message>
        <source>Show the frames one after another (Space)</source>
        <translation>フレームを順に表示します (スペース)</translation>
    </message>
    <message>
        <source>Play the frames</source>
        <translation>フレームを再生</translation>
    </message>
    <message>
        <source>Frames a second</source>
        <translation>1 秒あたりのフレーム数</translation>
    </message>
    <message>
        <source>Counts</source>
        <translation>カウント</translation>
    </message>
    <message>
        <source>Frames show their counts</source>
        <translation>フレームのカウントを表示します</translation>
    </message>
    <message>
        <source>Absorption</source>
        <translation>吸収</translation>
    </message>
    <message>
        <source>I1 frames show mu-t = ln(I0 / I1) of every pixel</source>
        <translation>I1 のフレームで、画素ごとの mu-t = ln(I0 / I1) を表示します</translation>
    </message>
    <message>
        <source>Difference</source>
        <translation>差</translation>
    </message>
    <message>
        <source>mu-t at the frame shown, or at E2, less mu-t at E1</source>
        <translation>表示中のフレーム (または E2) の mu-t から E1 の mu-t を引いた差を表示します</translation>
    </message>
    <message>
        <source>E1 becomes the energy of the frame shown</source>
        <translation>表示中のフレームのエネルギーを E1 にします</translation>
    </message>
    <message>
        <source>E1 from the frame shown</source>
        <translation>表示中のフレームを E1 に</translation>
    </message>
    <message>
        <source>Energy in eV whose absorption is taken off</source>
        <translation>吸収を差し引くエネルギー (eV)</translation>
    </message>
    <message>
        <source>E1 in eV</source>
        <translation>E1 (eV)</translation>
    </message>
    <message>
        <source>E2 becomes the energy of the frame shown, and stays</source>
        <translation>表示中のフレームのエネルギーを E2 に固定します</translation>
    </message>
    <message>
        <source>E2 from the frame shown</source>
        <translation>表示中のフレームを E2 に</translation>
    </message>
    <message>
        <source>Energy in eV from whose absorption that of E1 is taken off; empty: that of the frame shown</source>
        <translation>E1 の吸収を差し引かれるエネルギー (eV)。空のときは表示中のフレームのエネルギー</translation>
    </message>
    <message>
        <source>E2 in eV</source>
        <translation>E2 (eV)</translation>
    </message>
    <message>
        <source>shown</source>
        <translation>表示中</translation>
    </message>
    <message>
        <source>%1/s</source>
        <translation>%1 枚/秒</translation>
    </message>
    <message>
        <source>Load some frames first.</source>
        <translation>先にフレームを読み込んでください。</translation>
    </message>
    <message>
        <source>Show the data or I0 first.</source>
        <translation>先に「データ」か「I0」を表示してください。</translation>
    </message>
    <message>
        <source>Show the data first: I0 has counts only.</source>
        <translation>先に「データ」を表示してください。I0 で見られるのはカウントだけです。</translation>
    </message>
</context>
<context>
    <name>GuideWindow</name>
    <message>
        <source>User Guide</source>
        <translation>ユーザーガイド</translation>
    </message>
    <message>
        <source>guide/README.md</source>
        <extracomment>contents of the guide in the language of the interface</extracomment>
        <translation>guide/ja/README.md</translation>
    </message>
    <message>
        <source>Page of the guide</source>
        <translation>ガイドのページ</translation>
    </message>
    <message>
        <source>Places that were found</source>
        <translation>見つかった所</translation>
    </message>
    <message>
        <source>Contents</source>
        <translation>目次</translation>
    </message>
    <message>
        <source>Show the first page</source>
        <translation>最初のページを表示します</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>戻る</translation>
    </message>
    <message>
        <source>Go back to the page before</source>
        <translation>前に見ていたページに戻ります</translation>
    </message>
    <message>
        <source>Forward</source>
        <translation>進む</translation>
    </message>
    <message>
        <source>Go forward again</source>
        <translation>戻る前のページに進みます</translation>
    </message>
    <message>
        <source>Search the guide</source>
        <translation>ガイドを検索</translation>
    </message>
    <message>
        <source>Words to look for in all chapters (Ctrl+F); Enter or F3 goes to the next place, Shift+F3 to the one before</source>
        <translation>すべての章から探す言葉 (Ctrl+F)。Enter か F3 で次、Shift+F3 で前へ移ります</translation>
    </message>
    <message>
        <source>more than %1</source>
        <translation>%1 超</translation>
    </message>
    <message>
        <source>not found</source>
        <translation>見つかりません</translation>
    </message>
    <message>
        <source>%1 places</source>
        <translation>%1 か所</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 / %2</translation>
    </message>
</context>
<context>
    <name>HistogramView</name>
    <message>
        <source>Histogram of the map with the range of its colours</source>
        <translation>マップのヒストグラムと表示範囲</translation>
    </message>
    <message>
        <source>Drag a handle to change the range of the colours; the arrow keys move the upper one, with Shift the lower one</source>
        <translation>つまみをドラッグして表示範囲を変えます。矢印キーで上限、Shift + 矢印キーで下限が動きます</translation>
    </message>
    <message>
        <source>No values</source>
        <translation>値なし</translation>
    </message>
</context>
<context>
    <name>ImagePane</name>
    <message>
        <source>no value</source>
        <translation>値なし</translation>
    </message>
</context>
<context>
    <name>ImageView</name>
    <message>
        <source>No image</source>
        <translation>画像がありません</translation>
    </message>
</context>
<context>
    <name>InputFile</name>
    <message>
        <source>not a file</source>
        <translation>ファイルではありません</translation>
    </message>
    <message>
        <source>no such file</source>
        <translation>ファイルがありません</translation>
    </message>
    <message>
        <source>has changed while it was read</source>
        <translation>読み込み中に変更されました</translation>
    </message>
    <message>
        <source>has not answered, given up</source>
        <translation>応答がないため中止しました</translation>
    </message>
</context>
<context>
    <name>LCFReference</name>
    <message>
        <source>Victreen</source>
        <translation>Victreen</translation>
    </message>
    <message>
        <source>Normalise with Victreen backgrounds instead of straight lines; choose the same for the target</source>
        <translation>直線の代わりに Victreen のバックグラウンドで規格化します。試料側も同じにしてください</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>表示</translation>
    </message>
    <message>
        <source>Show this reference in the spectrum window</source>
        <translation>この参照スペクトルをスペクトルウィンドウに表示します</translation>
    </message>
    <message>
        <source>dMut</source>
        <translation>dMut</translation>
    </message>
    <message>
        <source>Edge jump of the reference itself</source>
        <translation>参照スペクトル自身のエッジジャンプ</translation>
    </message>
    <message>
        <source>at</source>
        <translation>吸収端</translation>
    </message>
    <message>
        <source>Middle of the reference&apos;s edge</source>
        <translation>参照スペクトルの吸収端の中点</translation>
    </message>
    <message>
        <source>[eV]  </source>
        <translation>eV </translation>
    </message>
    <message>
        <source>  dE [eV]</source>
        <translation> dE [eV]</translation>
    </message>
    <message>
        <source>Energy offset of the reference: it is compared at E + dE</source>
        <translation>参照スペクトルのエネルギーオフセット。E + dE の値で比較します</translation>
    </message>
    <message>
        <source>[%]  </source>
        <translation>[%]  </translation>
    </message>
    <message>
        <source>mut</source>
        <translation>mut</translation>
    </message>
    <message>
        <source>Edge jump due to this reference in the last fit</source>
        <translation>直前のフィットでのこの参照スペクトルによるエッジジャンプ</translation>
    </message>
    <message>
        <source>Fraction in per cent</source>
        <translation>割合 (%)</translation>
    </message>
    <message>
        <source>Fraction of this reference in the last fit, in per cent</source>
        <translation>直前のフィットでのこの参照スペクトルの割合 (%)</translation>
    </message>
    <message>
        <source>Error of the fraction, one sigma</source>
        <translation>割合の誤差 (1 シグマ)</translation>
    </message>
    <message>
        <source>Energy offset of the reference in eV</source>
        <translation>参照スペクトルのエネルギーオフセット (eV)</translation>
    </message>
    <message>
        <source>Edge jump due to this reference</source>
        <translation>この参照スペクトルによるエッジジャンプ</translation>
    </message>
    <message>
        <source>File of the reference</source>
        <translation>参照スペクトルのファイル</translation>
    </message>
    <message>
        <source>Reference %1</source>
        <translation>参照スペクトル %1</translation>
    </message>
</context>
<context>
    <name>MapChoice</name>
    <message>
        <source>none</source>
        <translation>なし</translation>
    </message>
    <message>
        <source>Analyze the image first.</source>
        <translation>先に画像を解析してください。</translation>
    </message>
</context>
<context>
    <name>MapFaces</name>
    <message>
        <source>There are no errors of the map on display.</source>
        <translation>表示中のマップには誤差がありません。</translation>
    </message>
    <message>
        <source>Run again with error maps.</source>
        <translation>誤差マップ付きで解析し直してください。</translation>
    </message>
    <message>
        <source>Analyze the image first.</source>
        <translation>先に画像を解析してください。</translation>
    </message>
</context>
<context>
    <name>MapImage</name>
    <message>
        <source>Save Energy Map as Image</source>
        <translation>エネルギーマップを画像で保存</translation>
    </message>
    <message>
        <source>Tiff Files (*.tif *.tiff)</source>
        <translation>TIFF ファイル (*.tif *.tiff)</translation>
    </message>
    <message>
        <source>Any Files (* *.*)</source>
        <translation>すべてのファイル (* *.*)</translation>
    </message>
    <message>
        <source>The energy shifts in eV as a TIFF file of 32-bit floats, for images of any shape</source>
        <translation>エネルギーシフト (eV) を 32 ビット浮動小数点の TIFF で保存します。画像の形は問いません</translation>
    </message>
    <message>
        <source>There is no energy-shift map yet.</source>
        <translation>エネルギーシフトマップがまだありません。</translation>
    </message>
    <message>
        <source>Save Ener&amp;gy Map as Image...</source>
        <translation>エネルギーマップを画像で保存(&amp;G)...</translation>
    </message>
</context>
<context>
    <name>MaskControl</name>
    <message>
        <source>Run again with error maps.</source>
        <translation>誤差マップ付きで解析し直してください。</translation>
    </message>
    <message>
        <source>no map to mask</source>
        <translation>マスクできるマップがありません</translation>
    </message>
    <message>
        <source>no mask</source>
        <translation>マスクなし</translation>
    </message>
    <message>
        <source>%1 of %2 bins blank (%3 %)</source>
        <translation>空白 %1 / %2 ビン (%3 %)</translation>
    </message>
</context>
<context>
    <name>Measurement</name>
    <message>
        <source>there is no frame on display</source>
        <translation>表示中のフレームがありません</translation>
    </message>
    <message>
        <source>no %1 frames are loaded yet</source>
        <translation>%1 のフレームがまだ読み込まれていません</translation>
    </message>
    <message>
        <source>%1: loading stopped after %2 of %3 files</source>
        <translation>%1: %3 ファイル中 %2 ファイルで読み込みを中止しました</translation>
    </message>
    <message>
        <source>there is no energy-shift map</source>
        <translation>エネルギーシフトマップがありません</translation>
    </message>
    <message>
        <source>not while an analysis of the image runs</source>
        <translation>画像の解析中はできません</translation>
    </message>
    <message>
        <source>no images are loaded</source>
        <translation>画像が読み込まれていません</translation>
    </message>
    <message>
        <source>fewer than two reference panels</source>
        <translation>参照スペクトルの行が 2 つ以上必要です</translation>
    </message>
    <message>
        <source>memory ran out</source>
        <translation>メモリが足りません</translation>
    </message>
    <message>
        <source>nothing has been deglitched: the processed values are 0</source>
        <translation>グリッチ除去がまだ行われていないため、処理後の値は 0 です</translation>
    </message>
    <message>
        <source>the system gives no thread</source>
        <translation>システムがスレッドを作成できません</translation>
    </message>
    <message>
        <source>the I0 frames have %1 pixels, the I1 frames %2</source>
        <translation>I0 のフレームは %1 画素、I1 のフレームは %2 画素でサイズが違います</translation>
    </message>
    <message>
        <source>%1 is being loaded</source>
        <translation>%1 の読み込み中です</translation>
    </message>
    <message numerus="yes">
        <source>an edge needs three energies, the I1 frames have %n</source>
        <translation>
            <numerusform>吸収端の解析には 3 つ以上のエネルギーが必要ですが、I1 のフレームには %n つしかありません</numerusform>
        </translation>
    </message>
    <message>
        <source>no I0 frames: I0 counts as 1 everywhere</source>
        <translation>I0 のフレームがないため、I0 をすべて 1 とみなします</translation>
    </message>
    <message>
        <source>frames were added</source>
        <translation>フレームが追加されました</translation>
    </message>
    <message>
        <source>the whole image is taken instead</source>
        <translation>代わりに画像全体を使います</translation>
    </message>
    <message>
        <source>no part of the region lies inside the image of %1 x %2 pixels</source>
        <translation>領域が %1 x %2 画素の画像に重なっていません</translation>
    </message>
    <message>
        <source>the region holds no pixel of any image</source>
        <translation>領域に含まれる画素がありません</translation>
    </message>
    <message>
        <source>the region reaches over the edge of the image: %1 %2 %3 %4 is left of it</source>
        <translation>領域が画像の外にはみ出しているため、%1 %2 %3 %4 に切り詰めます</translation>
    </message>
    <message>
        <source>frames were replaced</source>
        <translation>フレームが置き換えられました</translation>
    </message>
    <message>
        <source>no new %1 frames</source>
        <translation>%1 の新しいフレームはありません</translation>
    </message>
    <message>
        <source>frames were cleared</source>
        <translation>フレームが消去されました</translation>
    </message>
    <message>
        <source>the energy map has changed</source>
        <translation>エネルギーマップが変更されました</translation>
    </message>
    <message>
        <source>no bin of the area lies inside the image</source>
        <translation>領域のビンがひとつも画像の中にありません</translation>
    </message>
    <message>
        <source>there is no map to work on</source>
        <translation>処理できるマップがありません</translation>
    </message>
    <message>
        <source>the reference took no part in the fit: its map holds no values</source>
        <translation>参照スペクトルがフィットに使われていないため、マップに値がありません</translation>
    </message>
    <message>
        <source>the map holds no values</source>
        <translation>マップに値がありません</translation>
    </message>
    <message>
        <source>the percentiles of the frame are equal: the range stays</source>
        <translation>フレームのパーセンタイルが同じ値のため、範囲は変わりません</translation>
    </message>
    <message>
        <source>%1: not taken, a number besides the energy differs: %2</source>
        <translation>%1: 名前のエネルギー以外の番号が違うため読み込みません: %2</translation>
    </message>
    <message>
        <source>the energy map is an earlier one: what was to replace it failed</source>
        <translation>エネルギーマップは以前のものです: 置き換えに失敗しました</translation>
    </message>
    <message numerus="yes">
        <source>%n dark frame(s) not used: of another size than the images</source>
        <translation>
            <numerusform>画像とサイズが違うダークフレーム %n 枚は使いません</numerusform>
        </translation>
    </message>
    <message>
        <source>no bin of the area has counts at all energies: there is no mean spectrum</source>
        <translation>すべてのエネルギーでカウントのあるビンが領域にないため、平均スペクトルを作れません</translation>
    </message>
    <message>
        <source>the mean spectrum of the area has no rising edge</source>
        <translation>領域の平均スペクトルに吸収端の立ち上がりがありません</translation>
    </message>
    <message>
        <source>no reference panel %1</source>
        <translation>参照スペクトルの行 %1 はありません</translation>
    </message>
    <message>
        <source>run again with error maps</source>
        <translation>誤差マップ付きで解析し直してください</translation>
    </message>
    <message>
        <source>there is no map of this name yet: %1</source>
        <translation>この名前のマップはまだありません: %1</translation>
    </message>
    <message>
        <source>E0 of the mean spectrum: %1 eV</source>
        <translation>平均スペクトルの E0: %1 eV</translation>
    </message>
    <message>
        <source>the map has changed meanwhile</source>
        <translation>その間にマップが変わりました</translation>
    </message>
    <message>
        <source>no bin of the area has its centre inside the shape</source>
        <translation>中心が図形の内側にあるビンが領域にありません</translation>
    </message>
    <message>
        <source>dark</source>
        <translation>ダーク</translation>
    </message>
    <message>
        <source>%1 of memory are needed, the limit is %2 (results: %3, counts: %4, the program and what it holds: %5)</source>
        <translation>メモリが %1 必要ですが、上限は %2 です (結果 %3、カウント %4、プログラムと保持中のデータ %5)</translation>
    </message>
    <message>
        <source>dark: %1</source>
        <translation>ダーク: %1</translation>
    </message>
    <message>
        <source>%1 of memory are needed, the limit is %2 (this line: %3, the program and what it holds: %4)</source>
        <translation>メモリが %1 必要ですが、上限は %2 です (この行 %3、プログラムと保持中のデータ %4)</translation>
    </message>
    <message>
        <source>%1 of memory are needed, the limit of the system is %2 (this line: %3, the program and what it holds: %4)</source>
        <translation>メモリが %1 必要ですが、システムの上限は %2 です (この行 %3、プログラムと保持中のデータ %4)</translation>
    </message>
    <message>
        <source>the mean spectrum of the area is left out: %1</source>
        <translation>領域の平均スペクトルは除外しました: %1</translation>
    </message>
</context>
<context>
    <name>Memory</name>
    <message>
        <source>memory ran out</source>
        <translation>メモリが足りません</translation>
    </message>
    <message>
        <source>not enough memory: %1 more are needed</source>
        <translation>メモリが足りません: あと %1 必要です</translation>
    </message>
    <message>
        <source>not enough memory: %1 more are needed, %2 are left of the limit of %3</source>
        <translation>メモリが足りません: あと %1 必要ですが、上限 %3 の残りは %2 です</translation>
    </message>
</context>
<context>
    <name>MessageLine</name>
    <message>
        <source>(and %1 more)</source>
        <translation>(ほか %1 件)</translation>
    </message>
    <message>
        <source>(%1 more in Messages)</source>
        <translation>(ほか %1 件は「メッセージ」を参照)</translation>
    </message>
    <message>
        <source>in %1</source>
        <extracomment>folder of files that were saved; stands behind &quot;Saved NAME&quot;</extracomment>
        <translation>(%1)</translation>
    </message>
</context>
<context>
    <name>Messages</name>
    <message>
        <source>failed</source>
        <translation>失敗</translation>
    </message>
    <message>
        <source>warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>時刻</translation>
    </message>
    <message>
        <source>Outcome</source>
        <translation>種類</translation>
    </message>
    <message>
        <source>Batch line</source>
        <translation>バッチ行</translation>
    </message>
    <message>
        <source>File</source>
        <translation>ファイル</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>内容</translation>
    </message>
</context>
<context>
    <name>MessagesWindow</name>
    <message>
        <source>Copy</source>
        <translation>コピー</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>クリア</translation>
    </message>
    <message>
        <source>Messages</source>
        <translation>メッセージ</translation>
    </message>
    <message>
        <source>Copy the selected messages, or all when none is selected</source>
        <translation>選択したメッセージをコピーします。選択していないときはすべてコピーします</translation>
    </message>
    <message>
        <source>Empty the list</source>
        <translation>一覧を空にします</translation>
    </message>
    <message>
        <source>There are no messages.</source>
        <translation>メッセージはありません。</translation>
    </message>
    <message>
        <source>Failures and warnings since the start, the newest last</source>
        <translation>起動してからの失敗と警告です。新しいものほど下にあります</translation>
    </message>
</context>
<context>
    <name>PartStore</name>
    <message>
        <source>changed since parts were kept in %1: %2</source>
        <translation>%1 に解析の部分を保存した後で変更されました: %2</translation>
    </message>
    <message>
        <source>damaged and made again: %1</source>
        <translation>壊れていたため作り直しました: %1</translation>
    </message>
    <message>
        <source>%1 of %2 parts taken from %3</source>
        <translation>%2 個の部分のうち %1 個を %3 から読み込みました</translation>
    </message>
    <message>
        <source>no parts are kept in %1 any more (%2)</source>
        <translation>これ以降、解析の部分は %1 に保存されません (%2)</translation>
    </message>
</context>
<context>
    <name>Record</name>
    <message>
        <source>there is no energy-shift map</source>
        <translation>エネルギーシフトマップがありません</translation>
    </message>
    <message>
        <source>nothing has been analysed</source>
        <translation>まだ何も解析していません</translation>
    </message>
    <message>
        <source>a batch cannot carry the name %1</source>
        <translation>バッチには書けない名前です: %1</translation>
    </message>
    <message>
        <source>the energy of %1 stands in the name of its folder</source>
        <translation>%1 のエネルギーがフォルダー名から読み取られているため、記録できません</translation>
    </message>
    <message>
        <source>the run was stopped before its end</source>
        <translation>解析は途中で中止されています</translation>
    </message>
    <message>
        <source>the present inputs would make none of the results again</source>
        <translation>現在の入力では、どの結果も再現できません</translation>
    </message>
    <message>
        <source>the area has too many vertices for a batch: %1</source>
        <translation>領域の頂点が多すぎるため、バッチに書けません: %1</translation>
    </message>
</context>
<context>
    <name>Reference</name>
    <message>
        <source>no edge: %1</source>
        <translation>吸収端がありません: %1</translation>
    </message>
    <message numerus="yes">
        <source>pre-edge line on %n point(s): %1</source>
        <translation>
            <numerusform>プリエッジの直線が %n 点で決められています: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>post-edge line on %n point(s): %1</source>
        <translation>
            <numerusform>ポストエッジの直線が %n 点で決められています: %1</numerusform>
        </translation>
    </message>
    <message>
        <source>no spectrum: %1</source>
        <translation>スペクトルではありません: %1</translation>
    </message>
    <message>
        <source>cannot be read: %1</source>
        <translation>読み込めません: %1</translation>
    </message>
</context>
<context>
    <name>ReferenceFiles</name>
    <message>
        <source>Reference Spectra</source>
        <translation>参照スペクトル</translation>
    </message>
    <message>
        <source>Spectrum Files (*.dat *.txt *.xdi)</source>
        <translation>スペクトルファイル (*.dat *.txt *.xdi)</translation>
    </message>
    <message>
        <source>Any Files (* *.*)</source>
        <translation>すべてのファイル (* *.*)</translation>
    </message>
    <message>
        <source>In use: %1</source>
        <translation>使用中: %1</translation>
    </message>
</context>
<context>
    <name>ResultFiles</name>
    <message>
        <source>Save Res&amp;ults (HDF5)...</source>
        <translation>解析結果を保存 (HDF5)(&amp;U)...</translation>
    </message>
    <message>
        <source>Save Results</source>
        <translation>解析結果を保存</translation>
    </message>
    <message>
        <source>Results (*.h5)</source>
        <translation>解析結果 (*.h5)</translation>
    </message>
    <message>
        <source>Save Tab&amp;le (CSV)...</source>
        <translation>表を保存 (CSV)(&amp;L)...</translation>
    </message>
    <message>
        <source>Save Table</source>
        <translation>表を保存</translation>
    </message>
    <message>
        <source>Table (*.csv)</source>
        <translation>表 (*.csv)</translation>
    </message>
    <message>
        <source>Any Files (* *.*)</source>
        <translation>すべてのファイル (* *.*)</translation>
    </message>
    <message>
        <source>Fit or calibrate the area first.</source>
        <translation>先に領域をフィットするか、エネルギー校正してください。</translation>
    </message>
    <message>
        <source>All maps with spectra, origin and record, in one file for Python and viewers of NeXus files</source>
        <translation>すべてのマップを、スペクトル、由来、作業記録とともに 1 つのファイルに保存します。Python や NeXus ビューアーで開けます</translation>
    </message>
    <message>
        <source>Fit the area with references first.</source>
        <translation>先に領域を参照スペクトルでフィットしてください。</translation>
    </message>
    <message>
        <source>All maps of the fit side by side, a row for each bin</source>
        <translation>フィットのすべてのマップを横に並べ、1 ビン 1 行で保存します</translation>
    </message>
</context>
<context>
    <name>ResultKind</name>
    <message>
        <source>Edge jump due to the reference</source>
        <translation>参照スペクトルによるエッジジャンプ</translation>
    </message>
    <message>
        <source>Edge jump</source>
        <translation>エッジジャンプ</translation>
    </message>
    <message>
        <source>Residual absorption</source>
        <translation>残留吸収</translation>
    </message>
    <message>
        <source>Energy shift</source>
        <translation>エネルギーシフト</translation>
    </message>
    <message>
        <source>Counting error of the edge jump</source>
        <translation>エッジジャンプの計数誤差</translation>
    </message>
    <message>
        <source>R factor of the fit</source>
        <translation>フィットの R 因子</translation>
    </message>
    <message>
        <source>Reduced chi-square of the fit</source>
        <translation>フィットの換算カイ二乗</translation>
    </message>
    <message>
        <source>Total edge jump</source>
        <translation>全エッジジャンプ</translation>
    </message>
    <message>
        <source>Counting error of the total edge jump</source>
        <translation>全エッジジャンプの計数誤差</translation>
    </message>
    <message>
        <source>Difference of two energies</source>
        <translation>2 エネルギー間の差</translation>
    </message>
    <message>
        <source>Fraction of the reference</source>
        <translation>参照スペクトルの割合</translation>
    </message>
    <message>
        <source>Fraction of the residual absorption</source>
        <translation>残留吸収の割合</translation>
    </message>
    <message>
        <source>Counting error of the fraction</source>
        <translation>割合の計数誤差</translation>
    </message>
    <message>
        <source>Sum of the fractions</source>
        <translation>割合の合計</translation>
    </message>
</context>
<context>
    <name>RunAnswer</name>
    <message>
        <source>Analysed %1 bins in %2 s.</source>
        <translation>%1 ビンを解析しました (%2 秒)。</translation>
    </message>
    <message>
        <source>Fitted %1 bins with %2 reference in %3 s.</source>
        <translation>%1 ビンを参照スペクトル %2 個でフィットしました (%3 秒)。</translation>
    </message>
    <message>
        <source>Fitted %1 bins with %2 references in %3 s.</source>
        <translation>%1 ビンを参照スペクトル %2 個でフィットしました (%3 秒)。</translation>
    </message>
</context>
<context>
    <name>RunParts</name>
    <message>
        <source>%1: has changed since it was loaded, the work folder is not used for this analysis</source>
        <translation>%1: 読み込みの後で変更されました。この解析では作業フォルダーを使いません</translation>
    </message>
    <message>
        <source>changed since other parts of this analysis were made: %1</source>
        <translation>この解析のほかの部分が作られた後で変更されました: %1</translation>
    </message>
</context>
<context>
    <name>SaveDataCfg</name>
    <message>
        <source>Save Data Configuration</source>
        <translation>データ保存の設定</translation>
    </message>
    <message>
        <source>Save as Tiff</source>
        <translation>TIFF で保存</translation>
    </message>
    <message>
        <source>Fixed Scale</source>
        <translation>スケール固定</translation>
    </message>
    <message>
        <source>Minimum</source>
        <translation>最小値</translation>
    </message>
    <message>
        <source>Maximum</source>
        <translation>最大値</translation>
    </message>
    <message>
        <source>Save as Text data</source>
        <translation>テキストで保存</translation>
    </message>
    <message>
        <source>A table with nine significant digits below header lines that begin with &quot;#&quot;.</source>
        <translation>「#」で始まるヘッダー行と有効数字 9 桁の表です。</translation>
    </message>
    <message>
        <source>Separator</source>
        <translation>区切り</translation>
    </message>
    <message>
        <source>Comma Separated</source>
        <translation>コンマ区切り</translation>
    </message>
    <message>
        <source>Space Separated</source>
        <translation>空白区切り</translation>
    </message>
    <message>
        <source>Layout</source>
        <translation>並べ方</translation>
    </message>
    <message>
        <source>X Y Val : 1point/1line</source>
        <translation>X Y 値 : 1 点 1 行</translation>
    </message>
    <message>
        <source>Val1 Val2 Val3... : each Y line</source>
        <translation>値1 値2 値3... : Y ごとに 1 行</translation>
    </message>
    <message>
        <source>Save as Analyzed Area Size and Resolution</source>
        <translation>解析領域の大きさと解像度で保存</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>閉じる</translation>
    </message>
    <message>
        <source>Tiff File (*.tif)</source>
        <translation>TIFF ファイル (*.tif)</translation>
    </message>
    <message>
        <source>Data File (*.dat)</source>
        <translation>データファイル (*.dat)</translation>
    </message>
    <message>
        <source>Any Files (* *.*)</source>
        <translation>すべてのファイル (* *.*)</translation>
    </message>
    <message>
        <source>The lowest and highest value of each map become 0 and 65535.</source>
        <translation>マップごとの最小値と最大値が 0 と 65535 になります。</translation>
    </message>
    <message>
        <source>The maximum must be above the minimum.</source>
        <translation>最大値は最小値より大きくしてください。</translation>
    </message>
    <message>
        <source>Minimum and maximum become 0 and 65535.</source>
        <translation>最小値と最大値が 0 と 65535 になります。</translation>
    </message>
    <message>
        <source>Off: the lowest and the highest value of each map become 0 and 65535. On: the two values below, the same for every map.</source>
        <translation>オフ: マップごとの最小値と最大値が 0 と 65535 になります。オン: 下の 2 つの値をすべてのマップに使います。</translation>
    </message>
    <message>
        <source>The value saved as 0. Values outside the range wrap around unless saved as analyzed.</source>
        <translation>0 として保存する値。「解析領域の大きさと解像度で保存」でない場合、範囲外の値は桁あふれします。</translation>
    </message>
    <message>
        <source>The value saved as 65535. Values outside the range wrap around unless saved as analyzed.</source>
        <translation>65535 として保存する値。「解析領域の大きさと解像度で保存」でない場合、範囲外の値は桁あふれします。</translation>
    </message>
    <message>
        <source>A comma between the values: for spreadsheets</source>
        <translation>値をコンマで区切ります (表計算ソフト向け)</translation>
    </message>
    <message>
        <source>One blank between the values</source>
        <translation>値を空白 1 つで区切ります</translation>
    </message>
    <message>
        <source>Pixel x, pixel y and the value, one point a line.</source>
        <translation>画素 x、画素 y、値を 1 点 1 行で書きます。</translation>
    </message>
    <message>
        <source>The values only, one image row a line.</source>
        <translation>値だけを、画像の 1 行につき 1 行で書きます。</translation>
    </message>
    <message>
        <source>Only for &quot;Save as Tiff&quot;.</source>
        <translation>「TIFF で保存」のときだけ使います。</translation>
    </message>
    <message>
        <source>Only for &quot;Save as Text data&quot;.</source>
        <translation>「テキストで保存」のときだけ使います。</translation>
    </message>
    <message>
        <source>Only with &quot;Fixed Scale&quot;.</source>
        <translation>「スケール固定」のときだけ使います。</translation>
    </message>
    <message>
        <source>16-bit counts for image programs. Wide images only: data taller than wide come out scrambled, save those as float TIFF or as text.</source>
        <translation>画像ソフト向けの 16 ビット値です。縦長のデータは並びが乱れるので、浮動小数点 TIFF かテキストで保存してください。</translation>
    </message>
    <message>
        <source>Save as Float Tiff</source>
        <translation>浮動小数点 TIFF で保存</translation>
    </message>
    <message>
        <source>The values as they are, as 32-bit floats, for image programs and calculations. Images of any shape, no scale.</source>
        <translation>値をそのまま 32 ビット浮動小数点で保存します。画像ソフトや計算に使えます。画像の形は問わず、スケールも使いません。</translation>
    </message>
    <message>
        <source>One value for each analyzed bin, taken at its centre, instead of one for each pixel of the image. Acts on every form.</source>
        <translation>画素ごとではなく、解析したビンごとに中心の値を 1 つ保存します。どの形式にも効きます。</translation>
    </message>
    <message>
        <source>Save Masked</source>
        <translation>マスクして保存</translation>
    </message>
    <message>
        <source>Maps of a fit are saved with the mask of the Analyzer: blank bins have no number, in a 16-bit Tiff 0.</source>
        <translation>フィットのマップを解析パネルのマスク付きで保存します。空白のビンは値なし、16 ビット TIFF では 0 です。</translation>
    </message>
</context>
<context>
    <name>Saving</name>
    <message>
        <source>the result is %1</source>
        <translation>注意: %1です</translation>
    </message>
    <message>
        <source>no image is shown</source>
        <translation>表示中の画像がありません</translation>
    </message>
    <message>
        <source>there are no letters to draw with</source>
        <translation>文字を描くためのフォントが使えません</translation>
    </message>
    <message>
        <source>no result image is selected</source>
        <translation>解析結果の画像が選択されていません</translation>
    </message>
    <message>
        <source>the selected result holds no values</source>
        <translation>選択した結果に値がありません</translation>
    </message>
    <message>
        <source>the spectrum window shows no spectrum</source>
        <translation>スペクトルウィンドウに表示中のスペクトルがありません</translation>
    </message>
    <message>
        <source>a 16-bit TIFF taller than wide has shifted rows; a table or a float TIFF has not</source>
        <translation>縦長の 16 ビット TIFF は行がずれます。表または浮動小数点 TIFF ならずれません</translation>
    </message>
    <message>
        <source>the reference took no part in the fit: its map holds no values</source>
        <translation>参照スペクトルがフィットに使われていないため、マップに値がありません</translation>
    </message>
    <message>
        <source>there are no result images</source>
        <translation>結果画像がありません</translation>
    </message>
    <message>
        <source>there is no spectrum at the position</source>
        <translation>この位置にはスペクトルがありません</translation>
    </message>
    <message>
        <source>no images are loaded</source>
        <translation>画像が読み込まれていません</translation>
    </message>
    <message>
        <source>the result was %1</source>
        <translation>結果は %1されています</translation>
    </message>
    <message>
        <source>no picture format has this suffix (use .png): %1</source>
        <translation>この拡張子の画像形式はありません (.png を使ってください): %1</translation>
    </message>
    <message>
        <source>there is no spectrum at the position: the plot shows the standard alone</source>
        <translation>この位置にスペクトルがないため、プロットは標準試料だけです</translation>
    </message>
    <message>
        <source>there is no energy map: every shift in the file is 0</source>
        <translation>エネルギーマップがないため、ファイルのシフトはすべて 0 です</translation>
    </message>
    <message numerus="yes">
        <source>the range leaves %n of 65535 steps for the middle 90 % of the values; a table or a float TIFF keeps them as they are</source>
        <translation>
            <numerusform>この範囲では、値の中央 90 % に 65535 段階のうち %n 段階しか残りません。表または浮動小数点 TIFF なら値がそのまま残ります</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 of %2 pixels are blank: a 16-bit TIFF has 0 there</source>
        <translation>%2 画素中 %1 画素が空白です。16 ビット TIFF では 0 になります</translation>
    </message>
    <message>
        <source>no mask without error maps: run again with error maps</source>
        <translation>誤差マップがないためマスクできません。誤差マップ付きで解析し直してください</translation>
    </message>
    <message>
        <source>there are no maps</source>
        <translation>マップがありません</translation>
    </message>
    <message>
        <source>the E0 of the mean spectrum is not known before an analysis of the area (LCF or residual absorption): the spectrum was saved with its own</source>
        <translation>平均スペクトルの E0 は領域の解析 (LCF または残留吸収) を行うまで決まらないため、このスペクトル自身の E0 で保存しました</translation>
    </message>
</context>
<context>
    <name>SavingResults</name>
    <message>
        <source>there are no results to save</source>
        <translation>保存する解析結果がありません</translation>
    </message>
    <message>
        <source>there are no results of a fit to save</source>
        <translation>保存するフィット結果がありません</translation>
    </message>
    <message>
        <source>this program was installed without its module for HDF5 files</source>
        <translation>このプログラムには HDF5 ファイル用のモジュールがインストールされていません</translation>
    </message>
    <message>
        <source>the module for HDF5 files cannot be loaded: %1</source>
        <translation>HDF5 ファイル用のモジュールを読み込めません: %1</translation>
    </message>
    <message>
        <source>a file that does not answer is still being read</source>
        <translation>応答しないファイルをまだ読み込んでいます</translation>
    </message>
</context>
<context>
    <name>SelectDataFiles</name>
    <message>
        <source>Select</source>
        <translation>選択</translation>
    </message>
    <message>
        <source>Choose the image files of this stack, in ascending energy</source>
        <translation>このスタックの画像ファイルをエネルギーの昇順で選びます</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>追加</translation>
    </message>
    <message>
        <source>Add the files to the list instead of replacing it</source>
        <translation>リストを置き換えずにファイルを追加します</translation>
    </message>
    <message>
        <source>Load New</source>
        <translation>新規分を追加</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>クリア</translation>
    </message>
    <message>
        <source>Empty this stack</source>
        <translation>読み込んだ画像をすべて消去します</translation>
    </message>
    <message>
        <source>Number of files</source>
        <translation>ファイル数</translation>
    </message>
    <message>
        <source>Energy</source>
        <translation>エネルギー</translation>
    </message>
    <message>
        <source>Regular expression that finds the energy in a file&apos;s name. The whole path is searched, folders too; an underscore is the decimal point, so none may stand before the number.</source>
        <translation>ファイル名からエネルギーを取り出す正規表現。フォルダー名を含むパス全体を検索します。「_」は小数点とみなすので、数値の前には使えません。</translation>
    </message>
    <message>
        <source>Unit of the number in the file&apos;s name</source>
        <translation>ファイル名の数値の単位</translation>
    </message>
    <message>
        <source>IMG Files (*.img)</source>
        <translation>IMG ファイル (*.img)</translation>
    </message>
    <message>
        <source>Tiff Files (*.tif *.tiff)</source>
        <translation>TIFF ファイル (*.tif *.tiff)</translation>
    </message>
    <message>
        <source>Any Files (* *.*)</source>
        <translation>すべてのファイル (* *.*)</translation>
    </message>
    <message>
        <source>The files of this stack in the order of the frames; the one on display</source>
        <translation>このスタックのファイル (フレーム順)。表示中のものを示します</translation>
    </message>
    <message>
        <source>Wait until the stack is loaded.</source>
        <translation>読み込みが終わるまでお待ちください。</translation>
    </message>
    <message>
        <source>Select the first files first.</source>
        <translation>先に「選択」で最初のファイルを選んでください。</translation>
    </message>
    <message>
        <source>Add the files that have come into the folder since: for a measurement that still runs.</source>
        <translation>フォルダーにその後届いたファイルを追加します (測定を続けながら使えます)。</translation>
    </message>
    <message>
        <source>%1: there is no frame among what was dropped</source>
        <translation>%1: ドロップしたものにフレームがありません</translation>
    </message>
</context>
<context>
    <name>SpectrumFile</name>
    <message>
        <source>cannot be read: %1</source>
        <translation>読み込めません: %1</translation>
    </message>
    <message>
        <source>a 9809 file without its lattice spacing (D=)</source>
        <translation>面間隔 (D=) のない 9809 ファイルです</translation>
    </message>
    <message>
        <source>a 9809 file without the line &quot;Offset&quot;</source>
        <translation>「Offset」の行がない 9809 ファイルです</translation>
    </message>
    <message>
        <source>energies from %1 to %2 look like keV, eV are needed</source>
        <translation>エネルギー %1 ～ %2 は keV のようです (eV で指定してください)</translation>
    </message>
    <message>
        <source>not taken, %1: %2</source>
        <translation>読み込みませんでした。%1: %2</translation>
    </message>
    <message>
        <source>not a text file</source>
        <translation>テキストファイルではありません</translation>
    </message>
    <message numerus="yes">
        <source>%n usable point(s), at least five are needed</source>
        <translation>
            <numerusform>使える点が %n 点しかありません (5 点以上必要です)</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n row(s) without an energy and a value left out: %1</source>
        <translation>
            <numerusform>エネルギーと値のない %n 行を読み飛ばしました: %1</numerusform>
        </translation>
    </message>
    <message>
        <source>longer than any spectrum</source>
        <translation>スペクトルとしては長すぎます</translation>
    </message>
</context>
<context>
    <name>SpectrumFit</name>
    <message>
        <source>E0 at %1 eV lies outside the energies of %2</source>
        <translation>E0 (%1 eV) が %2 のエネルギー範囲の外にあります</translation>
    </message>
    <message>
        <source>the background ranges around E0 at %1 eV hold fewer than 3 points of %2</source>
        <translation>E0 (%1 eV) から見たバックグラウンドの範囲に入る %2 の点が 3 点に足りません</translation>
    </message>
    <message>
        <source>the E0 of the mean spectrum is that of the image: %1 has its own</source>
        <translation>平均スペクトルの E0 は画像のものなので、%1 にはそれ自身の E0 を使いました</translation>
    </message>
    <message>
        <source>constant and slope</source>
        <translation>定数項と傾き</translation>
    </message>
    <message>
        <source>sum %1, R %2, %3 of %4 energies, %5 to %6 eV</source>
        <translation>合計 %1、R %2、エネルギー %4 個中 %3 個、%5 ～ %6 eV</translation>
    </message>
    <message>
        <source>there is no fit to save</source>
        <translation>保存するフィットがありません</translation>
    </message>
    <message>
        <source>table and plot would be one file: %1</source>
        <translation>表とプロットが同じファイルになります: %1</translation>
    </message>
    <message>
        <source>%1: fraction %2, edge jump %3</source>
        <translation>%1: 割合 %2、エッジジャンプ %3</translation>
    </message>
</context>
<context>
    <name>SpectrumFitWindow</name>
    <message>
        <source>Double normalized</source>
        <translation>二重規格化</translation>
    </message>
    <message>
        <source>Energy [eV]</source>
        <translation>エネルギー [eV]</translation>
    </message>
    <message>
        <source>Fit</source>
        <translation>フィット</translation>
    </message>
    <message>
        <source>Residual</source>
        <translation>残差</translation>
    </message>
    <message>
        <source>No fit</source>
        <translation>フィットなし</translation>
    </message>
    <message>
        <source>Spectrum File...</source>
        <translation>スペクトルファイル...</translation>
    </message>
    <message>
        <source>Save Table...</source>
        <translation>表を保存...</translation>
    </message>
    <message>
        <source>Save Plot...</source>
        <translation>プロットを保存...</translation>
    </message>
    <message>
        <source>Fit of a Spectrum File</source>
        <translation>スペクトルファイルのフィット</translation>
    </message>
    <message>
        <source>Choose the spectrum file that the references in use are fitted to</source>
        <translation>使用中の参照スペクトルでフィットするスペクトルファイルを選びます</translation>
    </message>
    <message>
        <source>Reference</source>
        <translation>参照スペクトル</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>誤差</translation>
    </message>
    <message>
        <source>Edge jump</source>
        <translation>エッジジャンプ</translation>
    </message>
    <message>
        <source>Errors are one sigma, from what the fit leaves of the spectrum</source>
        <translation>誤差はフィットの残差から求めた 1 シグマです</translation>
    </message>
    <message>
        <source>Spectrum, fit and what each reference has in it; below, the difference</source>
        <translation>スペクトル、フィット、各参照スペクトルの寄与。下は残差</translation>
    </message>
    <message>
        <source>Save Fit of a Spectrum</source>
        <translation>スペクトルのフィットを保存</translation>
    </message>
    <message>
        <source>Text Table (*.dat)</source>
        <translation>テキストの表 (*.dat)</translation>
    </message>
    <message>
        <source>Any Files (* *.*)</source>
        <translation>すべてのファイル (* *.*)</translation>
    </message>
    <message>
        <source>Save the plot as PDF or as a picture</source>
        <translation>プロットを PDF または画像で保存します</translation>
    </message>
    <message>
        <source>Save Plot of the Fit</source>
        <translation>フィットのプロットを保存</translation>
    </message>
    <message>
        <source>PDF File (*.pdf)</source>
        <translation>PDF ファイル (*.pdf)</translation>
    </message>
    <message>
        <source>Image File (*.png)</source>
        <translation>画像ファイル (*.png)</translation>
    </message>
    <message>
        <source>Fit a Spectrum File</source>
        <translation>スペクトルファイルをフィット</translation>
    </message>
    <message>
        <source>Spectrum Files (*.dat *.txt *.xdi)</source>
        <translation>スペクトルファイル (*.dat *.txt *.xdi)</translation>
    </message>
    <message>
        <source>There is no fit.</source>
        <translation>フィットがありません。</translation>
    </message>
    <message>
        <source>Sum %1, R %2, %3 to %4 eV (%5 of %6 energies)</source>
        <translation>合計 %1、R %2、%3 ～ %4 eV (エネルギー %6 個中 %5 個)</translation>
    </message>
    <message>
        <source>Fraction</source>
        <translation>割合</translation>
    </message>
    <message>
        <source>Plot of the fit</source>
        <translation>フィットのプロット</translation>
    </message>
    <message>
        <source>Save fractions, numbers and curves as a text table</source>
        <translation>割合、各数値、曲線をテキストの表で保存します</translation>
    </message>
    <message>
        <source>Fractions and edge jumps of the references</source>
        <translation>参照スペクトルの割合とエッジジャンプ</translation>
    </message>
</context>
<context>
    <name>SpectrumPane</name>
    <message>
        <source>Position (%1, %2)</source>
        <translation>位置 (%1, %2)</translation>
    </message>
</context>
<context>
    <name>SpokenNames</name>
    <message>
        <source>I1 data</source>
        <translation>I1 データ</translation>
    </message>
    <message>
        <source>I0 data</source>
        <translation>I0 データ</translation>
    </message>
    <message>
        <source>Image</source>
        <translation>画像</translation>
    </message>
    <message>
        <source>Value at the position</source>
        <translation>カーソル位置の値</translation>
    </message>
    <message>
        <source>Frame shown</source>
        <translation>表示中のフレーム</translation>
    </message>
    <message>
        <source>Previous frame</source>
        <translation>前のフレーム</translation>
    </message>
    <message>
        <source>Next frame</source>
        <translation>次のフレーム</translation>
    </message>
    <message>
        <source>Cross section along the row</source>
        <translation>行方向の断面</translation>
    </message>
    <message>
        <source>Cross section along the column</source>
        <translation>列方向の断面</translation>
    </message>
    <message>
        <source>Half width of the bin</source>
        <translation>ビンの横の半幅</translation>
    </message>
    <message>
        <source>Half height of the bin</source>
        <translation>ビンの縦の半幅</translation>
    </message>
    <message>
        <source>Form of saved data</source>
        <translation>保存の形式</translation>
    </message>
    <message>
        <source>Factor of the deglitching</source>
        <translation>グリッチ除去の係数</translation>
    </message>
    <message>
        <source>Ratio of the deglitching</source>
        <translation>グリッチ除去の比率</translation>
    </message>
    <message>
        <source>Files of the stack</source>
        <translation>スタックのファイル</translation>
    </message>
    <message>
        <source>Pattern of the energy in the names</source>
        <translation>ファイル名のエネルギーのパターン</translation>
    </message>
    <message>
        <source>Unit of the energy</source>
        <translation>エネルギーの単位</translation>
    </message>
</context>
<context>
    <name>Stack</name>
    <message numerus="yes">
        <source>%1 and %n more</source>
        <translation>
            <numerusform>%1 ほか %n 個</numerusform>
        </translation>
    </message>
    <message>
        <source>an energy below 50 eV or above 200 keV: %1 eV read from %2</source>
        <translation>50 eV 未満または 200 keV 超のエネルギーです: %2 を %1 eV と読みました</translation>
    </message>
    <message>
        <source>no energy in the name, the number of the frame stands for it: %1</source>
        <translation>名前にエネルギーがないため、フレームの番号で代用します: %1</translation>
    </message>
    <message>
        <source>the energies of the frames do not ascend: spectra and analyses take them in order of energy</source>
        <translation>フレームがエネルギーの昇順ではありません。スペクトルと解析ではエネルギーの順に使います</translation>
    </message>
    <message>
        <source>%1 % of the pixels are saturated (65535 counts)</source>
        <translation>画素の %1 % が飽和しています (65535 カウント)</translation>
    </message>
    <message>
        <source>no energy in its name, while others have one</source>
        <translation>名前にエネルギーがありません (ほかのファイルにはあります)</translation>
    </message>
    <message>
        <source>%1: no frame was taken</source>
        <translation>%1: フレームが 1 枚も読み込まれませんでした</translation>
    </message>
    <message>
        <source>%1 x %2 pixels, the first frame %3 x %4</source>
        <translation>%1 x %2 画素で、最初のフレームの %3 x %4 と違います</translation>
    </message>
    <message>
        <source>the energy pattern finds only part of a number: %1 eV read from %2</source>
        <translation>エネルギーのパターンが数値の一部しか拾っていません: %2 を %1 eV と読みました</translation>
    </message>
    <message numerus="yes">
        <source>%n frame(s) with an energy that an earlier frame has</source>
        <translation>
            <numerusform>前のフレームと同じエネルギーのフレームが %n 枚あります</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1: the counts of %n frame(s) need %2 of memory, %3 are available: nothing was read</source>
        <translation>
            <numerusform>%1: フレーム %n 枚のカウントには %2 のメモリが必要ですが、使えるのは %3 です。何も読み込みませんでした</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>StatusLine</name>
    <message>
        <source>Stop Loading</source>
        <translation>読み込みを中止</translation>
    </message>
    <message>
        <source>Frames that have been read stay, the files still to be read are left out (Esc)</source>
        <translation>読み込み済みのフレームは残り、未読のファイルは読み込まれません (Esc)</translation>
    </message>
    <message numerus="yes">
        <source>%n file(s) to read</source>
        <translation>
            <numerusform>残り %n ファイル</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 frame %2 of %3   %4 eV</source>
        <translation>%1 フレーム %2 / %3   %4 eV</translation>
    </message>
    <message>
        <source>Energy-shift map</source>
        <translation>エネルギーシフトマップ</translation>
    </message>
    <message>
        <source>No energy-shift map yet</source>
        <translation>エネルギーシフトマップはまだありません</translation>
    </message>
    <message>
        <source>Result image</source>
        <translation>結果画像</translation>
    </message>
    <message>
        <source>No result yet: analyze the image and select a result in the Analyzer</source>
        <translation>結果はまだありません: 画像を解析し、解析パネルで結果を選択してください</translation>
    </message>
    <message numerus="yes">
        <source>%n dark file(s) to read</source>
        <translation>
            <numerusform>ダーク残り %n ファイル</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 of %2 dark frames in use, the others are not of the image&apos;s size</source>
        <translation>ダーク %2 枚中 %1 枚を使用 (残りは画像とサイズが違います)</translation>
    </message>
    <message numerus="yes">
        <source>%n dark frame(s)</source>
        <translation>
            <numerusform>ダーク %n 枚</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n dark file(s) unreadable or not of the image&apos;s size</source>
        <translation>
            <numerusform>ダーク %n ファイルを除外 (読み込み不可またはサイズ違い)</numerusform>
        </translation>
    </message>
    <message>
        <source>1 message</source>
        <translation>メッセージ 1 件</translation>
    </message>
    <message>
        <source>%1 messages</source>
        <translation>メッセージ %1 件</translation>
    </message>
    <message>
        <source>Show the failures and warnings that nobody has looked at yet</source>
        <translation>まだ確認していない失敗と警告を表示します</translation>
    </message>
    <message>
        <source>Messages that nobody has looked at</source>
        <translation>まだ確認していないメッセージ</translation>
    </message>
    <message>
        <source>No frames yet: open a folder, or select the files of I1 and I0</source>
        <translation>フレーム未読み込み: フォルダーを開くか、I1 と I0 のファイルを選択してください</translation>
    </message>
    <message>
        <source>Composite of the fractions of the references</source>
        <translation>参照スペクトルの割合の合成画像</translation>
    </message>
</context>
<context>
    <name>WhatWasDone</name>
    <message>
        <source>Save &amp;What Was Done...</source>
        <translation>作業記録を保存(&amp;W)...</translation>
    </message>
    <message>
        <source>Write down, as a batch, what makes the present results again</source>
        <translation>現在の結果を再現する手順を、バッチとして書き出します</translation>
    </message>
    <message>
        <source>Open W&amp;hat Was Done...</source>
        <translation>作業記録を開く(&amp;H)...</translation>
    </message>
    <message>
        <source>Run such a batch in the folder that it lies in</source>
        <translation>作業記録のバッチを、そのファイルのあるフォルダーで実行します</translation>
    </message>
    <message>
        <source>Open What Was Done</source>
        <translation>作業記録を開く</translation>
    </message>
    <message>
        <source>Batch File (*.bat)</source>
        <translation>バッチファイル (*.bat)</translation>
    </message>
    <message>
        <source>Any Files (* *.*)</source>
        <translation>すべてのファイル (* *.*)</translation>
    </message>
    <message>
        <source>Save What Was Done</source>
        <translation>作業記録を保存</translation>
    </message>
    <message>
        <source>cannot be read: %1</source>
        <translation>読み込めません: %1</translation>
    </message>
    <message>
        <source>cannot enter %1</source>
        <translation>フォルダーに移動できません: %1</translation>
    </message>
    <message>
        <source>Results not saved</source>
        <translation>未保存の結果</translation>
    </message>
    <message>
        <source>There are results that have not been saved. Close anyway?</source>
        <translation>保存していない結果があります。このまま終了しますか?</translation>
    </message>
    <message>
        <source>Close without saving</source>
        <translation>保存せずに終了</translation>
    </message>
    <message>
        <source>Save what was done...</source>
        <translation>作業記録を保存...</translation>
    </message>
    <message>
        <source>&amp;Recent Records</source>
        <translation>最近の作業記録(&amp;R)</translation>
    </message>
</context>
<context>
    <name>WorkBar</name>
    <message>
        <source>%1 s left</source>
        <translation>残り %1 秒</translation>
    </message>
    <message>
        <source>%1 min left</source>
        <translation>残り %1 分</translation>
    </message>
    <message>
        <source>%1 %2 %</source>
        <translation>%1 %2 %</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1、%2</translation>
    </message>
    <message>
        <source>Calibration</source>
        <translation>エネルギー校正</translation>
    </message>
    <message>
        <source>MLCF</source>
        <translation>MLCF</translation>
    </message>
    <message>
        <source>LCF</source>
        <translation>LCF</translation>
    </message>
    <message>
        <source>Residual absorption</source>
        <translation>残留吸収</translation>
    </message>
    <message>
        <source>Difference</source>
        <translation>差</translation>
    </message>
    <message>
        <source>Deglitching</source>
        <translation>グリッチ除去</translation>
    </message>
</context>
<context>
    <name>WorkFolder</name>
    <message>
        <source>the work folder is of another version of the program (format %2, not %3): %1</source>
        <translation>別のバージョンのプログラムの作業フォルダーです (形式は %3 ではなく %2): %1</translation>
    </message>
    <message>
        <source>the work folder is a file: %1</source>
        <translation>作業フォルダーに指定されたのはファイルです: %1</translation>
    </message>
    <message>
        <source>the work folder cannot be made: %1 (%2)</source>
        <translation>作業フォルダーを作成できません: %1 (%2)</translation>
    </message>
    <message>
        <source>the work folder cannot be written to: %1 (%2)</source>
        <translation>作業フォルダーに書き込めません: %1 (%2)</translation>
    </message>
    <message>
        <source>the work folder does not tell its format: %1</source>
        <translation>作業フォルダーの形式が分かりません: %1</translation>
    </message>
</context>
<context>
    <name>Writing</name>
    <message>
        <source>the measurement was read from this file: %1</source>
        <translation>測定の入力ファイルのため書き込めません: %1</translation>
    </message>
    <message>
        <source>cannot be written: %1</source>
        <translation>書き込めません: %1</translation>
    </message>
    <message>
        <source>Saved %1</source>
        <translation>保存しました: %1</translation>
    </message>
    <message>
        <source>no such folder</source>
        <translation>フォルダーがありません</translation>
    </message>
    <message>
        <source>the folder cannot be written to</source>
        <translation>フォルダーに書き込めません</translation>
    </message>
    <message>
        <source>the batch that runs was read from this file: %1</source>
        <translation>実行中のバッチのファイルのため書き込めません: %1</translation>
    </message>
    <message>
        <source>what is there is not a file</source>
        <translation>同名のものがありますが、ファイルではありません</translation>
    </message>
</context>
<context>
    <name>XafsFileSelect</name>
    <message>
        <source>Select</source>
        <translation>選択</translation>
    </message>
    <message>
        <source>Choose a spectrum file: the 9809 format, or two columns of energy in eV and mu-t</source>
        <translation>スペクトルファイルを選びます (9809 形式、またはエネルギー (eV) と mu-t の 2 列)</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>クリア</translation>
    </message>
    <message>
        <source>Use</source>
        <translation>使用</translation>
    </message>
    <message>
        <source>Use this spectrum as a reference in the fit</source>
        <translation>このスペクトルを参照スペクトルとしてフィットに使います</translation>
    </message>
    <message>
        <source>XAFS File Select</source>
        <translation>XAFS ファイルの選択</translation>
    </message>
    <message>
        <source>XAFS Data File (*.dat)</source>
        <translation>XAFS データファイル (*.dat)</translation>
    </message>
    <message>
        <source>Any Files (* *.*)</source>
        <translation>すべてのファイル (* *.*)</translation>
    </message>
    <message>
        <source>No file chosen yet</source>
        <translation>ファイル未選択</translation>
    </message>
    <message>
        <source>Forget the spectrum</source>
        <translation>スペクトルを消去します</translation>
    </message>
    <message>
        <source>Spectrum file</source>
        <translation>スペクトルファイル</translation>
    </message>
</context>
<context>
    <name>XafsView</name>
    <message>
        <source>What is plotted</source>
        <translation>縦軸</translation>
    </message>
    <message>
        <source>Unit of the abscissa</source>
        <translation>横軸の単位</translation>
    </message>
    <message>
        <source>Pre- and post-edge</source>
        <translation>プリ・ポストエッジ</translation>
    </message>
    <message>
        <source>Show the backgrounds under mu-t</source>
        <translation>mu-t のバックグラウンドを表示します</translation>
    </message>
    <message>
        <source>Corrected</source>
        <translation>エネルギー補正</translation>
    </message>
    <message>
        <source>Save the energies with the correction of the energy-shift map</source>
        <translation>エネルギーシフトマップで補正したエネルギーで保存します</translation>
    </message>
    <message>
        <source>Fit</source>
        <translation>フィット</translation>
    </message>
    <message>
        <source>No spectrum</source>
        <translation>スペクトルがありません</translation>
    </message>
    <message>
        <source>Energy [eV]</source>
        <translation>エネルギー [eV]</translation>
    </message>
    <message>
        <source>Energy [keV]</source>
        <translation>エネルギー [keV]</translation>
    </message>
    <message>
        <source>Wavelength [A]</source>
        <translation>波長 [A]</translation>
    </message>
    <message>
        <source>Bragg angle [deg]</source>
        <translation>ブラッグ角 [deg]</translation>
    </message>
    <message>
        <source>Normalized</source>
        <translation>規格化</translation>
    </message>
    <message>
        <source>Double normalized</source>
        <translation>二重規格化</translation>
    </message>
    <message>
        <source>Post based</source>
        <translation>ポストエッジ基準</translation>
    </message>
    <message>
        <source>Post based by span</source>
        <translation>ポストエッジ基準 (幅で規格化)</translation>
    </message>
    <message>
        <source>Residual</source>
        <translation>残差</translation>
    </message>
    <message>
        <source>Drag to magnify, double click to show everything, right click for the menu</source>
        <translation>ドラッグで拡大、ダブルクリックで全体表示、右クリックでメニュー</translation>
    </message>
    <message>
        <source>Plot</source>
        <translation>プロット</translation>
    </message>
    <message>
        <source>Save the plot, keep spectra in it; also with a right click on the plot</source>
        <translation>プロットの保存、スペクトルの固定。プロットの右クリックでも開きます</translation>
    </message>
    <message>
        <source>Save Plot...</source>
        <translation>プロットを保存...</translation>
    </message>
    <message>
        <source>As picture (PNG) or as vector drawing (PDF)</source>
        <translation>画像 (PNG) またはベクター図 (PDF) で保存します</translation>
    </message>
    <message>
        <source>Pin Spectrum</source>
        <translation>スペクトルを固定</translation>
    </message>
    <message>
        <source>Remove Pinned</source>
        <translation>固定したスペクトルを削除</translation>
    </message>
    <message>
        <source>Remove All Pinned</source>
        <translation>固定したスペクトルをすべて削除</translation>
    </message>
    <message>
        <source>Point at a position of the image first.</source>
        <translation>先に画像上の位置を指してください。</translation>
    </message>
    <message>
        <source>Remove a pinned spectrum first.</source>
        <translation>先に固定したスペクトルを削除してください。</translation>
    </message>
    <message>
        <source>Keep the spectrum in the plot, to compare others with it</source>
        <translation>ほかのスペクトルと比べるため、プロットに残します</translation>
    </message>
    <message>
        <source>Vector Drawing (*.pdf)</source>
        <translation>ベクター図 (*.pdf)</translation>
    </message>
    <message>
        <source>Save Plot</source>
        <translation>プロットを保存</translation>
    </message>
    <message>
        <source>Image File (*.png)</source>
        <translation>画像ファイル (*.png)</translation>
    </message>
    <message>
        <source>Choose mu-t first.</source>
        <translation>先に mu-t を選んでください。</translation>
    </message>
    <message>
        <source>cannot be written: %1</source>
        <translation>書き込めません: %1</translation>
    </message>
    <message>
        <source>Plot of spectra</source>
        <translation>スペクトルのプロット</translation>
    </message>
</context>
</TS>
