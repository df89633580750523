// Measuring: the mean colour of a part and of a picture of any size.

// The colour at a place: the mean of 5 x 5 pixels around it.
Function ColourAt(photo As Picture, x As Integer, y As Integer) As Color
  Dim red, green, blue As Integer
  photo.LMX_GetAverageRGB(x - 2, y - 2, 4, 4, red, green, blue, 0)
  If LMX_GetLastError() <> 0 Then Return &c000000
  Return RGB(red, green, blue)
End Function

// The mean colour of a picture of any size; black if it cannot be measured. The sums of a call hold
// 8,421,504 pixels of value 255. So a large picture is measured in bands of rows, each weighted by
// its rows.
Function MeanColour(photo As Picture) As Color
  Dim red, green, blue As Integer
  Dim allRed, allGreen, allBlue As Double
  Dim rows As Integer = Max(1, Floor(8000000 / photo.Width))
  For top As Integer = 0 To photo.Height - 1 Step rows
    Dim height As Integer = Min(rows, photo.Height - top)
    photo.LMX_GetAverageRGB(0, top, photo.Width - 1, height - 1, red, green, blue, 100000)
    If LMX_GetLastError() <> 0 Then Return &c000000
    allRed = allRed + red * height
    allGreen = allGreen + green * height
    allBlue = allBlue + blue * height
  Next
  Return RGB(Floor(allRed / photo.Height), Floor(allGreen / photo.Height), Floor(allBlue / photo.Height))
End Function

// The hue of the mean colour, or -1 for a grey.
Function MeanHue(photo As Picture) As Double
  Dim hue, saturation, brightness As Double
  Dim small As Picture = photo.LMX_Stretch(64, 64, 100000)
  If small = Nil Then Return -1
  small.LMX_GetAverageHSV(0, 0, 63, 63, hue, saturation, brightness, 0)
  If hue >= 0 Then Return hue  // neither -1, for black, nor NaN, for another grey
  Return -1
End Function
