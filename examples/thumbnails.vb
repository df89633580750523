// Thumbnails: in proportion, never enlarged, and square ones from the middle.

// The largest picture of these proportions that fits into a square of `size` pixels.
Function Thumbnail(photo As Picture, size As Integer) As Picture
  Dim factor As Double = Min(size / photo.Width, size / photo.Height)
  If factor > 1 Then factor = 1
  Dim width As Integer = Max(1, Floor(photo.Width * factor))
  Dim height As Integer = Max(1, Floor(photo.Height * factor))
  Return photo.LMX_Stretch(width, height, 100000)
End Function

// Nil if the picture cannot be cut or resized; LMX_GetLastError tells why. 0 is a lack of memory.
Function SquareThumbnail(photo As Picture, size As Integer) As Picture
  Dim side As Integer = Min(photo.Width, photo.Height)
  Dim left As Integer = (photo.Width - side) / 2
  Dim top As Integer = (photo.Height - side) / 2
  Dim square As Picture = photo.LMX_Trim(left, top, side, side, &h00000000, 0)
  If square = Nil Then Return Nil
  Return square.LMX_Stretch(size, size, 100000)
End Function
