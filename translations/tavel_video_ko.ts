<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ko_KR">
<context>
    <name>BookmarkWidget</name>
    <message>
        <source>BOOKMARKS</source>
        <translation>책갈피</translation>
    </message>
    <message>
        <source>TIME</source>
        <translation>시간</translation>
    </message>
</context>
<context>
    <name>DicDialogBase</name>
    <message>
        <source>Search</source>
        <translation>검색</translation>
    </message>
    <message>
        <source>Select a word to find then hit search.</source>
        <translation>찾을 단어를 고른 다음 검색을 누르세요.</translation>
    </message>
</context>
<context>
    <name>PlayListWidget</name>
    <message>
        <source>PLAY LIST</source>
        <translation>재생 목록</translation>
    </message>
</context>
<context>
    <name>SettingWidget</name>
    <message>
        <source>Reset</source>
        <translation>초기화</translation>
    </message>
    <message>
        <source>On</source>
        <translation>켜기</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>끄기</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>표시</translation>
    </message>
    <message>
        <source>Hide</source>
        <translation>숨기기</translation>
    </message>
    <message>
        <source>1</source>
        <translation>1</translation>
    </message>
    <message>
        <source>2</source>
        <translation>2</translation>
    </message>
    <message>
        <source>3</source>
        <translation>3</translation>
    </message>
    <message>
        <source>4</source>
        <translation>4</translation>
    </message>
    <message>
        <source>5</source>
        <translation>5</translation>
    </message>
    <message>
        <source>6</source>
        <translation>6</translation>
    </message>
    <message>
        <source>7</source>
        <translation>7</translation>
    </message>
    <message>
        <source>8</source>
        <translation>8</translation>
    </message>
    <message>
        <source>Video Setting</source>
        <translation>동영상 설정</translation>
    </message>
    <message>
        <source>Video</source>
        <translation>영상</translation>
    </message>
    <message>
        <source>Sound</source>
        <translation>소리</translation>
    </message>
    <message>
        <source>Subtitle</source>
        <translation>자막</translation>
    </message>
    <message>
        <source>Display</source>
        <translation>화면</translation>
    </message>
    <message>
        <source>Playback</source>
        <translation>재생</translation>
    </message>
    <message>
        <source>Info</source>
        <translation>정보</translation>
    </message>
    <message>
        <source>About</source>
        <translation>제품 정보</translation>
    </message>
    <message>
        <source>Red</source>
        <translation>빨강</translation>
    </message>
    <message>
        <source>Green</source>
        <translation>초록</translation>
    </message>
    <message>
        <source>Blue</source>
        <translation>파랑</translation>
    </message>
    <message>
        <source>Audio Track</source>
        <translation>음성 트랙</translation>
    </message>
    <message>
        <source>SPDIF Audio Output</source>
        <translation>SPDIF 음성 출력</translation>
    </message>
    <message>
        <source>Subtitles</source>
        <translation>자막 표시</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>크기</translation>
    </message>
    <message>
        <source>Large</source>
        <translation>크게</translation>
    </message>
    <message>
        <source>Medium</source>
        <translation>보통</translation>
    </message>
    <message>
        <source>Small</source>
        <translation>작게</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>색상</translation>
    </message>
    <message>
        <source>White</source>
        <translation>흰색</translation>
    </message>
    <message>
        <source>Gray</source>
        <translation>회색</translation>
    </message>
    <message>
        <source>Sky Blue</source>
        <translation>하늘색</translation>
    </message>
    <message>
        <source>Orange</source>
        <translation>주황</translation>
    </message>
    <message>
        <source>Violet</source>
        <translation>보라</translation>
    </message>
    <message>
        <source>Deep Pink</source>
        <translation>진분홍</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>위치</translation>
    </message>
    <message>
        <source>High</source>
        <translation>위</translation>
    </message>
    <message>
        <source>Middle</source>
        <translation>가운데</translation>
    </message>
    <message>
        <source>Low</source>
        <translation>아래</translation>
    </message>
    <message>
        <source>Track</source>
        <translation>트랙</translation>
    </message>
    <message>
        <source>Sync</source>
        <translation>싱크</translation>
    </message>
    <message>
        <source>seconds</source>
        <translation>초</translation>
    </message>
    <message>
        <source>Menu Display Time</source>
        <translation>메뉴 표시 시간</translation>
    </message>
    <message>
        <source>Always</source>
        <translation>항상</translation>
    </message>
    <message>
        <source>3 seconds</source>
        <translation>3초</translation>
    </message>
    <message>
        <source>5 seconds</source>
        <translation>5초</translation>
    </message>
    <message>
        <source>10 seconds</source>
        <translation>10초</translation>
    </message>
    <message>
        <source>Menu Opacity</source>
        <translation>메뉴 불투명도</translation>
    </message>
    <message>
        <source>30 Percent</source>
        <translation>30퍼센트</translation>
    </message>
    <message>
        <source>50 Percent</source>
        <translation>50퍼센트</translation>
    </message>
    <message>
        <source>70 Percent</source>
        <translation>70퍼센트</translation>
    </message>
    <message>
        <source>100 Percent</source>
        <translation>100퍼센트</translation>
    </message>
    <message>
        <source>Aspect Ratio</source>
        <translation>화면 비율</translation>
    </message>
    <message>
        <source>Full Screen</source>
        <translation>전체 화면</translation>
    </message>
    <message>
        <source>Original</source>
        <translation>원본 비율</translation>
    </message>
    <message>
        <source>Display Info</source>
        <translation>정보 표시</translation>
    </message>
    <message>
        <source>Privacy on Pause</source>
        <translation>정지 시 화면 숨김</translation>
    </message>
    <message>
        <source>Skip Time</source>
        <translation>건너뛰기 시간</translation>
    </message>
    <message>
        <source>15 seconds</source>
        <translation>15초</translation>
    </message>
    <message>
        <source>20 seconds</source>
        <translation>20초</translation>
    </message>
    <message>
        <source>30 seconds</source>
        <translation>30초</translation>
    </message>
    <message>
        <source>1 minute</source>
        <translation>1분</translation>
    </message>
    <message>
        <source>Bookmark Controls</source>
        <translation>책갈피 단추</translation>
    </message>
    <message>
        <source>Speed Controls</source>
        <translation>속도 조절 단추</translation>
    </message>
    <message>
        <source>Repeat AB Controls</source>
        <translation>구간 반복 단추</translation>
    </message>
    <message>
        <source>After Playback Finishes</source>
        <translation>재생이 끝난 뒤</translation>
    </message>
    <message>
        <source>Play Next File</source>
        <translation>다음 파일 재생</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>정지</translation>
    </message>
    <message>
        <source>Repeat Current File</source>
        <translation>현재 파일 반복</translation>
    </message>
    <message>
        <source>Scan Video</source>
        <translation>영상 탐색</translation>
    </message>
    <message>
        <source>Seek Bar Only</source>
        <translation>탐색 막대만</translation>
    </message>
    <message>
        <source>Video Key Frames</source>
        <translation>키 프레임 보기</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>버전</translation>
    </message>
    <message>
        <source>Video player built on Qt (LGPL 3), mpv and FFmpeg (GPL 2 or later).
Nanum fonts: SIL Open Font License 1.1.</source>
        <translation>Qt(LGPL 3), mpv와 FFmpeg(GPL 2 이상)로 만든 동영상 재생기입니다.
나눔 글꼴: SIL 오픈 폰트 라이선스 1.1.</translation>
    </message>
    <message>
        <source>Audio</source>
        <translation>음성</translation>
    </message>
    <message>
        <source>Codec : </source>
        <translation>코덱 : </translation>
    </message>
    <message>
        <source>Resolution : </source>
        <translation>해상도 : </translation>
    </message>
    <message>
        <source>Frame Rate : </source>
        <translation>프레임 속도 : </translation>
    </message>
    <message>
        <source>Channels : </source>
        <translation>채널 : </translation>
    </message>
    <message>
        <source>Sampling Rate : </source>
        <translation>샘플링 속도 : </translation>
    </message>
</context>
<context>
    <name>TitleSkin</name>
    <message>
        <source>VIDEO</source>
        <translation>동영상</translation>
    </message>
</context>
</TS>
